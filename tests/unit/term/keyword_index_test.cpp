#include "term/keyword_index.h"

#include <gtest/gtest.h>

#include <string>

#include "term/help_list.h"
#include "term/help_records.h"
#include "util/vector.h"

namespace {

/// Adds a keyword to a list. @return whether it was not there yet.
bool Add(const UniqueHelpList& list, const std::string& keyword) {
  const std::uint64_t free_slot = list->ulFirstFree;
  ESH_NewHelpInfo(keyword.c_str(), "", list.get());
  return list->ulFirstFree != free_slot;
}

UniqueHelpList NewList() { return UniqueHelpList(VEC_Alloc(8)); }

TEST(KeywordIndex, RefusesEveryDuplicateInALargeDirectory) {
  constexpr int kMany = 100'000;
  const UniqueHelpList list = NewList();
  for (int i = 0; i < kMany; ++i) {
    ASSERT_TRUE(Add(list, "file" + std::to_string(i)));
  }
  for (int i = 0; i < kMany; ++i) {
    ASSERT_FALSE(Add(list, "file" + std::to_string(i)));
  }
}

TEST(KeywordIndex, KeepsListsApart) {
  const UniqueHelpList a = NewList();
  const UniqueHelpList b = NewList();
  for (const char* keyword : {"x", "y", "z"}) {
    EXPECT_TRUE(Add(a, keyword));
    EXPECT_TRUE(Add(b, keyword));
    EXPECT_FALSE(Add(a, keyword));
    EXPECT_FALSE(Add(b, keyword));
  }
}

TEST(KeywordIndex, ANewListIsEmptyWhereverItLies) {
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(Add(NewList(), "same"));
  }
}

TEST(KeywordIndex, SeesWhatOthersTookOut) {
  const UniqueHelpList list = NewList();
  for (const char* keyword : {"a", "b", "c", "d"}) {
    Add(list, keyword);
  }
  for (const std::uint64_t index : {3U, 1U, 0U}) {
    auto* record = static_cast<ESH_HELP_INFO_S*>(VEC_Del(list.get(), index));
    const std::string keyword = record->szKeyWord;
    FreeHelpRecord(record);
    EXPECT_TRUE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, keyword)) << keyword;
    EXPECT_FALSE(Add(list, "c")) << keyword;
  }
}

}  // namespace
