#include "term/help_list.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>
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

/// A record as the sort moves it about. Comparing the leads spares most looks at the records, which lie far apart.
struct SortEntry {
  std::uint64_t lead;  // 0 in all entries, or the characters in which the keywords begin to differ
  void* record;
};

const char* KeywordOf(const void* record) { return static_cast<const ESH_HELP_INFO_S*>(record)->szKeyWord; }

int Compare(const void* a, const void* b) { return CmpHelpString(KeywordOf(a), KeywordOf(b)); }

int Compare(const SortEntry& a, const SortEntry& b) {
  if (a.lead != b.lead) {
    return a.lead < b.lead ? -1 : 1;
  }
  return a.record == b.record ? 0 : Compare(a.record, b.record);
}

/// Splits a range around the element in its middle. Equal elements are swapped too, which keeps the halves even.
/// @return the ends of the left and the start of the right part.
template <typename Element>
std::pair<std::int64_t, std::int64_t> Partition(Element* elements, std::int64_t lo, std::int64_t hi) {
  const Element pivot = elements[lo + (hi - lo) / 2];
  std::int64_t left = lo;
  std::int64_t right = hi;
  while (left <= right) {
    while (left < hi && Compare(elements[left], pivot) < 0) {
      ++left;
    }
    while (right > lo && Compare(elements[right], pivot) > 0) {
      --right;
    }
    if (left <= right) {
      std::swap(elements[left], elements[right]);
      ++left;
      --right;
    }
  }
  return {right, left};
}

/// @param splits_left how often the range may still be split before its order counts as one that splits badly.
template <typename Element>
void SortRange(Element* elements, std::int64_t lo, std::int64_t hi, int splits_left) {
  while (lo < hi) {
    if (splits_left-- == 0) {
      std::sort(elements + lo, elements + hi + 1, [](const Element& a, const Element& b) { return Compare(a, b) < 0; });
      return;
    }
    const auto [left_end, right_start] = Partition(elements, lo, hi);
    // The smaller part goes on the stack and the larger into the next round, so the stack stays shallow whatever
    // the order of the list.
    if (left_end - lo < hi - right_start) {
      SortRange(elements, lo, left_end, splits_left);
      lo = right_start;
    } else {
      SortRange(elements, right_start, hi, splits_left);
      hi = left_end;
    }
  }
}

void FetchAhead(std::span<void* const> records, std::size_t index) {
  if (index + kLinesAhead < records.size()) {
    __builtin_prefetch(records[index + kLinesAhead]);
  }
}

/// How many characters all keywords share, when their order is that of their bytes: as soon as they begin with a
/// character that neither a number nor "<cr>" begins with.
/// @return 0 when their order may be another.
std::size_t SharedBeginning(std::span<void* const> records) {
  const std::string_view first(KeywordOf(records.front()));
  if (first.empty() || first[0] <= '9' || first[0] == kCrWord[0]) {
    return 0;
  }
  std::size_t shared = first.size();
  for (std::size_t i = 0; i < records.size() && shared > 0; ++i) {
    FetchAhead(records, i);
    const char* keyword = KeywordOf(records[i]);
    shared =
        static_cast<std::size_t>(std::mismatch(first.begin(), first.begin() + shared, keyword).first - first.begin());
  }
  return shared;
}

/// The first eight characters as a number that orders as they do; those behind the text's end count as 0.
std::uint64_t LeadOf(const char* text) {
  std::uint64_t lead = 0;
  for (int shift = 56; shift >= 0 && *text != '\0'; shift -= 8) {
    lead |= std::uint64_t{static_cast<unsigned char>(*text++)} << shift;
  }
  return lead;
}

void FillEntries(std::span<void* const> records, SortEntry* entries) {
  const std::size_t shared = SharedBeginning(records);
  for (std::size_t i = 0; i < records.size(); ++i) {
    FetchAhead(records, i);
    entries[i] = {shared == 0 ? 0 : LeadOf(KeywordOf(records[i]) + shared), records[i]};
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
  const std::uint64_t index = record == nullptr ? kNoIndex : VEC_Add(list, kNoIndex, record);
  if (index == kNoIndex) {
    FreeHelpRecord(record);
    return kSuccess;
  }
  g_index.Added(*list, index);
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

void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi) {
  if (lo >= hi) {
    return;
  }
  g_index.Forget();  // it knows the lines by their places
  const std::span<void*> records(list->ppvArray + lo, static_cast<std::size_t>(hi - lo) + 1);
  const auto last = static_cast<std::int64_t>(records.size()) - 1;
  const std::unique_ptr<SortEntry[]> entries(new (std::nothrow) SortEntry[records.size()]);
  if (entries == nullptr) {
    SortRange(records.data(), 0, last, kMaxSplits);
    return;
  }
  FillEntries(records, entries.get());
  SortRange(entries.get(), 0, last, kMaxSplits);
  for (std::size_t i = 0; i < records.size(); ++i) {
    records[i] = entries[i].record;
  }
}
