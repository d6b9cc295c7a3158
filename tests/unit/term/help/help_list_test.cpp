#include "term/help/help_list.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

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

TEST(HelpList, IsKeptApartFromOthersWhereverTheyLie) {
  const UniqueHelpList list = NewList();
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(Add(NewList(), "same"));
    EXPECT_EQ(Add(list, "same"), i == 0);
  }
}

TEST(HelpList, TakesALineAgainThatWasTakenOut) {
  const UniqueHelpList list = NewList();
  for (const char* keyword : {"a", "b", "c"}) Add(list, keyword);
  for (const std::uint64_t index : {2U, 0U}) {
    const std::string keyword = At(list, index).szKeyWord;
    RemoveHelpLine(*list, index);
    EXPECT_TRUE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, "b")) << keyword;
  }
}

TEST(HelpList, FreesARecordMadeByHand) {
  VEC_S* list = VEC_Alloc(kUsualSlots);
  void* record = std::calloc(1, sizeof(ESH_HELP_INFO_S));
  VEC_Add(list, kNoIndex, record);
  ESH_NewHelpInfo("", "the keyword that is there", list);
  EXPECT_EQ(VEC_GetCount(list), 1U);
  ESH_FreeHelpInfoVec(list);
}

}  // namespace
