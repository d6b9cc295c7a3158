#include "term/help_order.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <utility>

#include "shell/command_tree.h"
#include "term/help_list.h"
#include "util/large_pages.h"
#include "util/unique_handle.h"

namespace {

/// Far more than a list needs that splits well. A list with its largest keywords in the middle loses only one or two
/// at each split, and with 100,000 files the time, which then grows with the square, comes to minutes.
constexpr int kMaxSplits = 128;

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

const char* KeywordOf(const void* record) { return static_cast<const ESH_HELP_INFO_S*>(record)->szKeyWord; }

int Compare(const void* a, const void* b) { return CmpHelpString(KeywordOf(a), KeywordOf(b)); }

/// Splits a range around the record in its middle. Equal records are swapped too, which keeps the halves even.
/// @return the ends of the left and the start of the right part.
std::pair<std::int64_t, std::int64_t> Partition(void** records, std::int64_t lo, std::int64_t hi) {
  const void* const pivot = records[lo + (hi - lo) / 2];
  std::int64_t left = lo;
  std::int64_t right = hi;
  while (left <= right) {
    while (left < hi && Compare(records[left], pivot) < 0) {
      ++left;
    }
    while (right > lo && Compare(records[right], pivot) > 0) {
      --right;
    }
    if (left <= right) {
      std::swap(records[left], records[right]);
      ++left;
      --right;
    }
  }
  return {right, left};
}

/// @param splits_left how often the range may still be split before its order counts as one that splits badly.
void SortRange(void** records, std::int64_t lo, std::int64_t hi, int splits_left) {
  while (lo < hi) {
    if (splits_left-- == 0) {
      std::sort(records + lo, records + hi + 1, [](const void* a, const void* b) { return Compare(a, b) < 0; });
      return;
    }
    const auto [left_end, right_start] = Partition(records, lo, hi);
    // The smaller part goes on the stack and the larger into the next round, so the stack stays shallow whatever
    // the order of the list.
    if (left_end - lo < hi - right_start) {
      SortRange(records, lo, left_end, splits_left);
      lo = right_start;
    } else {
      SortRange(records, right_start, hi, splits_left);
      hi = left_end;
    }
  }
}

void QuickSort(std::span<void*> records) {
  SortRange(records.data(), 0, static_cast<std::int64_t>(records.size()) - 1, kMaxSplits);
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
  const char* first = KeywordOf(records.front());
  if (static_cast<unsigned char>(first[0]) <= '9' || first[0] == kCrWord[0]) {
    return 0;
  }
  std::size_t shared = std::strlen(first);
  for (std::size_t i = 0; i < records.size(); ++i) {
    FetchAhead(records, i);
    const char* keyword = KeywordOf(records[i]);
    if (std::strncmp(first, keyword, shared) != 0) {
      shared = static_cast<std::size_t>(std::mismatch(first, first + shared, keyword).first - first);
    }
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

/// A record as it is sorted without a look at it.
struct SortEntry {
  std::uint64_t lead;  // of what follows the shared beginning of all keywords
  void* record;
};
using SortEntries = std::span<SortEntry>;

void FillEntries(std::span<void* const> records, std::size_t shared, SortEntries entries) {
  for (std::size_t i = 0; i < records.size(); ++i) {
    FetchAhead(records, i);
    entries[i] = {LeadOf(KeywordOf(records[i]) + shared), records[i]};
  }
}

/// Puts the entries in the order of one byte of their leads; where it is equal they stay in the order they had.
/// @param shift how many bits stand behind that byte.
void SortByByte(SortEntries entries, SortEntries sorted, int shift) {
  const auto byte_of = [shift](const SortEntry& entry) { return entry.lead >> shift & 0xFF; };
  std::array<std::size_t, 256> starts{};
  for (const SortEntry& entry : entries) {
    ++starts[byte_of(entry)];
  }
  std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), std::size_t{0});
  for (const SortEntry& entry : entries) {
    sorted[starts[byte_of(entry)]++] = entry;
  }
}

/// Sorts by the leads, one byte after the other from the last to the first (radix sort).
/// @param other room for as many entries.
void SortByLead(SortEntries entries, SortEntries other) {
  for (int shift = 0; shift < 64; shift += 16) {
    SortByByte(entries, other, shift);
    SortByByte(other, entries, shift + 8);
  }
}

/// Puts the records in the order of their entries, and those whose leads are equal in order among themselves.
void TakeOrder(SortEntries entries, std::span<void*> records) {
  std::ranges::transform(entries, records.begin(), &SortEntry::record);
  for (std::size_t start = 0, end = 0; start < entries.size(); start = end) {
    while (end < entries.size() && entries[end].lead == entries[start].lead) {
      ++end;
    }
    QuickSort(records.subspan(start, end - start));
  }
}

}  // namespace

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

void SortHelpLines(std::span<void*> records) {
  const std::size_t count = records.size();
  const std::size_t shared = SharedBeginning(records);
  const std::size_t size = 2 * count * sizeof(SortEntry);
  const std::unique_ptr<SortEntry, MemoryFreer> memory(
      static_cast<SortEntry*>(shared == 0 ? nullptr : AllocateLargePages(size)));
  if (memory == nullptr) {
    QuickSort(records);
    return;
  }
  const SortEntries entries(memory.get(), count);
  FillEntries(records, shared, entries);
  SortByLead(entries, {memory.get() + count, count});
  TakeOrder(entries, records);
}
