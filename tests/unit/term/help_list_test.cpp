#include "term/help_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "term/help_order.h"
#include "term/help_records.h"

namespace {

UniqueHelpList NewList() { return UniqueHelpList(VEC_Alloc(kUsualSlots)); }

/// Adds a keyword to a list. @return whether it was not there yet.
bool Add(const UniqueHelpList& list, const std::string& keyword, const char* help = "") {
  const std::uint64_t free_slot = list->ulFirstFree;
  ESH_NewHelpInfo(keyword.c_str(), help, list.get());
  return list->ulFirstFree != free_slot;
}

const ESH_HELP_INFO_S& At(const UniqueHelpList& list, std::uint64_t index) {
  return *static_cast<const ESH_HELP_INFO_S*>(list->ppvArray[index]);
}

/// Each pair is in order.
constexpr struct {
  const char* first;
  const char* second;
} kOrder[] = {
    {"copy", "display"}, {"zzz", "<cr>"},     {"10", "<cr>"},    {"9", "10"},        {"10", "!x"},  {"10", "09a"},
    {"10", "10a"},       {"9", "9a"},         {"10abc", "2abc"}, {"Zebra", "apple"}, {"a", "\xFF"}, {"a", "aa"},
    {"0", "0x"},         {"5 blind", "five"}, {"010", "9a"},     {"9", "010"},
};

TEST(HelpOrder, IsNumbersThenTextsThenTheEnd) {
  for (const auto& c : kOrder) {
    EXPECT_LT(CmpHelpString(c.first, c.second), 0) << c.first << " before " << c.second;
    EXPECT_GT(CmpHelpString(c.second, c.first), 0) << c.second << " after " << c.first;
  }
  EXPECT_EQ(CmpHelpString("007", "7"), 0);
  EXPECT_EQ(CmpHelpString("same", "same"), 0);
  EXPECT_GT(CmpHelpString("<cr>", "<cr>"), 0);
}

constexpr int kMany = 100'000;

/// How the keywords lie before they are sorted.
constexpr struct {
  const char* why;
  int (*value)(int index);
} kShapes[] = {
    {"sorted", [](int i) { return i; }},
    {"reversed", [](int i) { return kMany - i; }},
    {"equal", [](int) { return 7; }},
    {"two values", [](int i) { return i % 2; }},
    {"organ pipe", [](int i) { return i < kMany / 2 ? i : kMany - i; }},
    {"shuffled", [](int i) { return static_cast<int>(i * 7919LL % kMany); }},
};

TEST(HelpOrder, ComesSoonHoweverTheKeywordsLie) {
  for (const auto& shape : kShapes) {
    // A record begins with its keyword, and the sort sees no more of it.
    std::vector<std::array<char, 8>> keywords(kMany);
    const UniqueVector list(VEC_Alloc(kMany));
    for (int i = 0; auto& keyword : keywords) {
      std::snprintf(keyword.data(), keyword.size(), "%d", shape.value(i++));
      VEC_Add(list.get(), kNoIndex, keyword.data());
    }
    QuickSortStrVec(list.get(), 0, kMany - 1);
    EXPECT_EQ(std::set<void*>(list->ppvArray, list->ppvArray + kMany).size(), keywords.size()) << shape.why;
    EXPECT_TRUE(std::is_sorted(list->ppvArray, list->ppvArray + kMany, [](const void* a, const void* b) {
      return std::strtol(static_cast<const char*>(a), nullptr, 10) <
             std::strtol(static_cast<const char*>(b), nullptr, 10);
    })) << shape.why;
  }
}

/// All texts of up to three of the characters behind a beginning.
std::vector<std::string> TextsBehind(const std::string& beginning) {
  std::vector<std::string> texts = {beginning};
  for (std::size_t i = 0; texts[i].size() < beginning.size() + 3; ++i) {
    for (const char* more : {"\xFF", "a", "0", " "}) texts.push_back(texts[i] + more);
  }
  return texts;
}

TEST(HelpOrder, OfTextsWithASharedBeginningIsThatOfTheirBytes) {
  for (const char* beginning : {"x", "\xC3\xA9", "flash:/", "flash:/image-", "flash:/12345678"}) {
    const UniqueHelpList list = NewList();
    std::vector<std::string> texts = TextsBehind(beginning);
    for (const std::string& text : texts) Add(list, text);
    QuickSortStrVec(list.get(), 0, static_cast<std::int64_t>(texts.size()) - 1);
    std::sort(texts.begin(), texts.end());
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(At(list, i).szKeyWord, texts[i]) << i;
    for (const std::string& text : texts) EXPECT_FALSE(Add(list, text)) << "a sorted list still knows " << text;
  }
}

TEST(HelpList, KeepsTheFirstOfEqualKeywordsAndCutsLongTexts) {
  const UniqueHelpList list = NewList();
  EXPECT_TRUE(Add(list, "X.X.X.X", "first"));
  EXPECT_TRUE(Add(list, "x.x.x.x", "another, by its bytes"));
  EXPECT_FALSE(Add(list, "X.X.X.X", "second"));
  EXPECT_STREQ(At(list, 0).szHelp, "first");
  EXPECT_TRUE(Add(list, std::string(600, 'k'), std::string(600, 'h').c_str()));
  EXPECT_EQ(At(list, 2).szKeyWord, std::string(512, 'k'));
  EXPECT_EQ(At(list, 2).szHelp, std::string(512, 'h'));
}

TEST(HelpList, KeepsTextsOfAllLengthsApart) {
  constexpr std::size_t kLengths[] = {4, 62, 63, 64, 127, 128, 447, 448, 511, 512};
  const UniqueHelpList list = NewList();
  std::vector<std::pair<std::string, std::string>> texts;
  for (int i = 0; i < 900; ++i) {
    const std::size_t keyword_length = kLengths[i / 90];
    const std::size_t help_length = kLengths[i / 9 % 10];
    const std::string number = std::to_string(1000 + i);
    texts.emplace_back(number + std::string(keyword_length - 4, 'k'), number + std::string(help_length - 4, 'h'));
    EXPECT_TRUE(Add(list, texts.back().first, texts.back().second.c_str()));
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(At(list, i).szKeyWord, texts[i].first);
    EXPECT_EQ(At(list, i).szHelp, texts[i].second);
  }
}

TEST(HelpList, RefusesEveryDuplicateInALargeDirectory) {
  const UniqueHelpList list = NewList();
  for (const bool is_new : {true, false}) {
    for (int i = 0; i < kMany; ++i) ASSERT_EQ(Add(list, "file" + std::to_string(i)), is_new) << i;
  }
}

TEST(HelpList, IsKeptApartFromOthersWhereverTheyLie) {
  const UniqueHelpList list = NewList();
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(Add(NewList(), "same"));
    EXPECT_EQ(Add(list, "same"), i == 0);
  }
}

TEST(HelpList, SeesWhatOthersTookOut) {
  const UniqueHelpList list = NewList();
  for (const char* keyword : {"a", "b", "c", "d"}) Add(list, keyword);
  for (const std::uint64_t index : {3U, 1U, 0U}) {
    const std::string keyword = At(list, index).szKeyWord;
    FreeHelpRecord(static_cast<ESH_HELP_INFO_S*>(VEC_Del(list.get(), index)));
    EXPECT_TRUE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, "c")) << keyword;
  }
  for (const std::uint64_t hole : {1U, 2U}) {  // the second one leaves the lowest where it is
    FreeHelpRecord(static_cast<ESH_HELP_INFO_S*>(VEC_Del(list.get(), hole)));
    EXPECT_FALSE(Add(list, "a"));
  }
  EXPECT_TRUE(Add(list, "c"));
  EXPECT_FALSE(Add(list, "c"));
}

}  // namespace
