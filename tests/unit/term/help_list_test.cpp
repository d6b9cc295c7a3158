#include "term/help_list.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "shell/command_tree.h"
#include "tests/support/test_view.h"

namespace {

std::string Keywords(const VEC_S& list) {
  std::string text;
  ForEachSlot<ESH_HELP_INFO_S>(
      list, [&](std::uint64_t, const ESH_HELP_INFO_S& line) { text += std::string(line.szKeyWord) + " "; });
  return text;
}

struct OrderCase {
  const char* first;
  const char* second;
};

/// Each pair is in order.
constexpr OrderCase kOrder[] = {
    {"copy", "display"}, {"display", "<cr>"}, {"zzz", "<cr>"}, {"10", "<cr>"}, {"9", "10"},
    {"10", "abc"},       {"10", "!x"},        {"10", "09a"},   {"10", "10a"},  {"10abc", "2abc"},
    {"Zebra", "apple"},  {"a", "\xFF"},       {"a", "aa"},     {"0", "0x"},    {"5 blind", "five"},
};

TEST(HelpOrder, IsNumbersThenTextsThenTheEnd) {
  for (const OrderCase& c : kOrder) {
    EXPECT_LT(CmpHelpString(c.first, c.second), 0) << c.first << " before " << c.second;
    EXPECT_GT(CmpHelpString(c.second, c.first), 0) << c.second << " after " << c.first;
  }
  EXPECT_EQ(CmpHelpString("007", "7"), 0);
  EXPECT_EQ(CmpHelpString("same", "same"), 0);
  EXPECT_GT(CmpHelpString("<cr>", "<cr>"), 0);
}

constexpr int kMany = 100'000;

using Keyword = std::array<char, 8>;

/// How the keywords lie before they are sorted.
struct ShapeCase {
  const char* name;
  int (*value)(int index);
};

constexpr ShapeCase kShapes[] = {
    {"sorted", [](int i) { return i; }},
    {"reversed", [](int i) { return kMany - i; }},
    {"equal", [](int) { return 7; }},
    {"two values", [](int i) { return i % 2; }},
    {"organ pipe", [](int i) { return i < kMany / 2 ? i : kMany - i; }},
    {"shuffled", [](int i) { return static_cast<int>(i * 7919LL % kMany); }},
};

/// Sorts on a stack that a recursion into the larger part would leave soon.
void SortOnASmallStack(VEC_S* list) {
  constexpr std::size_t kStack = std::size_t{256} * 1024;
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
  pthread_t thread{};
  ASSERT_EQ(pthread_create(
                &thread, &attributes,
                [](void* argument) -> void* {
                  QuickSortStrVec(static_cast<VEC_S*>(argument), 0, kMany - 1);
                  return nullptr;
                },
                list),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

TEST(Sort, EndsSortedAndStaysShallowHoweverTheKeywordsLie) {
  for (const ShapeCase& shape : kShapes) {
    std::vector<Keyword> keywords(kMany);
    const UniqueVector list(VEC_Alloc(kMany));
    for (int i = 0; i < kMany; ++i) {
      Keyword& keyword = keywords[static_cast<std::size_t>(i)];
      std::snprintf(keyword.data(), keyword.size(), "%d", shape.value(i));
      // A record begins with its keyword, and the sort sees no more of it.
      VEC_Add(list.get(), kNoIndex, keyword.data());
    }
    SortOnASmallStack(list.get());
    EXPECT_TRUE(std::is_sorted(list->ppvArray, list->ppvArray + kMany, [](const void* a, const void* b) {
      return std::strtol(static_cast<const char*>(a), nullptr, 10) <
             std::strtol(static_cast<const char*>(b), nullptr, 10);
    })) << shape.name;
  }
}

TEST(Sort, LeavesTheRestAlone) {
  const UniqueHelpList list(VEC_Alloc(8));
  for (const char* keyword : {"e", "d", "c", "b", "a"}) {
    ESH_NewHelpInfo(keyword, "", list.get());
  }
  QuickSortStrVec(list.get(), 1, 3);
  EXPECT_EQ(Keywords(*list), "e b c d a ");
  QuickSortStrVec(list.get(), 0, -1);
  QuickSortStrVec(list.get(), 2, 2);
  EXPECT_EQ(Keywords(*list), "e b c d a ");
}

TEST(HelpList, KeepsTheFirstOfEqualKeywords) {
  const UniqueHelpList list(VEC_Alloc(8));
  ESH_NewHelpInfo("X.X.X.X", "first", list.get());
  ESH_NewHelpInfo("x.x.x.x", "another, by its bytes", list.get());
  ESH_NewHelpInfo("X.X.X.X", "second", list.get());
  EXPECT_EQ(Keywords(*list), "X.X.X.X x.x.x.x ");
  EXPECT_STREQ(static_cast<ESH_HELP_INFO_S*>(list->ppvArray[0])->szHelp, "first");
}

TEST(HelpList, CutsLongTexts) {
  const UniqueHelpList list(VEC_Alloc(8));
  ESH_NewHelpInfo(std::string(600, 'k').c_str(), std::string(600, 'h').c_str(), list.get());
  const auto* line = static_cast<ESH_HELP_INFO_S*>(list->ppvArray[0]);
  EXPECT_EQ(line->szKeyWord, std::string(512, 'k'));
  EXPECT_EQ(line->szHelp, std::string(512, 'h'));
}

std::uint32_t ListNames(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* element) {
  ESH_NewHelpInfo((std::string(word) + "|" + element->pcKeyWord).c_str(), "", list);
  ESH_NewHelpInfo("display", "not the first", list);
  return 0;
}

TEST(HelpList, AsksTheCandidatesInTheirOrder) {
  TestView view("<boot>");
  view.AddAll({"reboot <cr>", "display version <cr>", "STRING<1-8> <cr>", "display interface <cr>", "<cr>"});
  const UniqueVector candidates(VEC_Alloc(8));
  ForEachSlot<ESH_CMD_THREAD_S>(*g_pstEshCurrentView->pstCmdVec, [&](std::uint64_t, ESH_CMD_THREAD_S& command) {
    VEC_Add(candidates.get(), kNoIndex, FirstElement(command));
  });
  static_cast<ESH_CMD_ELEMENT_S*>(candidates->ppvArray[2])->pfnHelp = ListNames;
  const UniqueHelpList list(ESH_MakeHelpInfoVec("fla", candidates.get()));
  EXPECT_EQ(Keywords(*list), "reboot display fla|STRING<1-8> <cr> ");
  const UniqueVector none(VEC_Alloc(8));
  const UniqueHelpList empty(ESH_MakeHelpInfoVec("?", none.get()));
  EXPECT_EQ(VEC_GetCount(empty.get()), 0U);
}

}  // namespace
