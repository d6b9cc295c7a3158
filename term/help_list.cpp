#include "term/help_list.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "shell/command_tree.h"
#include "shell/result.h"
#include "term/help_records.h"
#include "term/keyword_index.h"
#include "util/fixed_text.h"

namespace {

/// Far more than a list needs that splits well. A list with its largest keywords in the middle loses only one or two
/// at each split, and with 100,000 files the time, which then grows with the square, comes to minutes.
constexpr int kMaxSplits = 128;

KeywordIndex g_index;

ESH_HELP_INFO_S* NewRecord(std::string_view keyword, std::string_view help) {
  ESH_HELP_INFO_S* record = NewHelpRecord();
  if (record != nullptr) {
    CopyText(record->szKeyWord, keyword);
    CopyText(record->szHelp, help);
  }
  return record;
}

/// The sort asks this for every pair, and nearly every first character is the answer.
bool IsCr(const char* keyword) { return keyword[0] == kCrWord[0] && std::strcmp(keyword, kCrWord) == 0; }

struct Number {
  unsigned long value;
  const char* rest;  // what follows it; the whole text when it does not begin with a number
};

Number LeadingNumber(const char* text) {
  if (*text > '9') {
    return {0, text};  // no number begins like this, but nearly every file name does
  }
  char* rest = nullptr;
  const unsigned long value = std::strtoul(text, &rest, 10);
  return {value, rest};
}

const char* KeywordAt(const VEC_S& list, std::int64_t index) {
  return static_cast<const ESH_HELP_INFO_S*>(list.ppvArray[index])->szKeyWord;
}

/// Splits a range around the element in its middle. Equal elements are swapped too, which keeps the halves even.
/// @return the ends of the left and the start of the right part.
std::pair<std::int64_t, std::int64_t> Partition(VEC_S& list, std::int64_t lo, std::int64_t hi) {
  const char* pivot = KeywordAt(list, lo + (hi - lo) / 2);
  std::int64_t left = lo;
  std::int64_t right = hi;
  while (left <= right) {
    while (left < hi && CmpHelpString(KeywordAt(list, left), pivot) < 0) {
      ++left;
    }
    while (right > lo && CmpHelpString(KeywordAt(list, right), pivot) > 0) {
      --right;
    }
    if (left <= right) {
      std::swap(list.ppvArray[left], list.ppvArray[right]);
      ++left;
      --right;
    }
  }
  return {right, left};
}

/// Sorts a range in whatever order it lies, by another way than splitting it around its middle.
void SortInAnyOrder(VEC_S& list, std::int64_t lo, std::int64_t hi) {
  std::sort(list.ppvArray + lo, list.ppvArray + hi + 1, [](const void* a, const void* b) {
    return CmpHelpString(static_cast<const ESH_HELP_INFO_S*>(a)->szKeyWord,
                         static_cast<const ESH_HELP_INFO_S*>(b)->szKeyWord) < 0;
  });
}

/// @param splits_left how often the range may still be split before its order counts as one that splits badly.
void SortRange(VEC_S& list, std::int64_t lo, std::int64_t hi, int splits_left) {
  while (lo < hi) {
    if (splits_left-- == 0) {
      SortInAnyOrder(list, lo, hi);
      return;
    }
    const auto [left_end, right_start] = Partition(list, lo, hi);
    // The smaller part goes on the stack and the larger into the next round, so the stack stays shallow whatever
    // the order of the list.
    if (left_end - lo < hi - right_start) {
      SortRange(list, lo, left_end, splits_left);
      lo = right_start;
    } else {
      SortRange(list, right_start, hi, splits_left);
      hi = left_end;
    }
  }
}

}  // namespace

VEC_S* ESH_MakeHelpInfoVec(const char* word, const VEC_S* candidates) {
  VEC_S* list = VEC_Alloc(kUsualSlots);
  if (list == nullptr) {
    return nullptr;
  }
  ForEachSlot<ESH_CMD_ELEMENT_S>(*candidates, [&](std::uint64_t, const ESH_CMD_ELEMENT_S& element) {
    if (element.pfnHelp == nullptr) {
      ESH_NewHelpInfo(element.pcKeyWord, element.pcHelp, list);
    } else {
      element.pfnHelp(word, list, &element);
    }
  });
  return list;
}

std::uint32_t ESH_NewHelpInfo(const char* keyword, const char* help, VEC_S* list) {
  g_index.Follow(*list);
  if (g_index.Holds(keyword)) {
    return kSuccess;
  }
  ESH_HELP_INFO_S* record = NewRecord(keyword, help);
  if (record == nullptr || VEC_Add(list, kNoIndex, record) == kNoIndex) {
    FreeHelpRecord(record);
    return kSuccess;
  }
  g_index.Added(*list, *record);
  return kSuccess;
}

void ESH_FreeHelpInfoVec(VEC_S* list) {
  g_index.Forget();
  FreeVectorOf<ESH_HELP_INFO_S>(list, FreeHelpRecord);
}

int CmpHelpString(const char* a, const char* b) {
  if (IsCr(a)) {
    return 1;
  }
  if (IsCr(b)) {
    return -1;
  }
  const Number first = LeadingNumber(a);
  const Number second = LeadingNumber(b);
  if (*first.rest != '\0' && *second.rest != '\0') {
    return std::strcmp(a, b);
  }
  if (*first.rest != '\0' || *second.rest != '\0') {
    return *first.rest != '\0' ? 1 : -1;
  }
  if (first.value == second.value) {
    return 0;
  }
  return first.value < second.value ? -1 : 1;
}

void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi) { SortRange(*list, lo, hi, kMaxSplits); }
