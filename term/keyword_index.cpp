#include "term/keyword_index.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include "term/help_list.h"
#include "util/large_pages.h"
#include "util/vector.h"

namespace {

constexpr std::size_t kMinSlots = 64;
constexpr std::size_t kGrowth = 4;  // the entries must all be placed anew, so not often

std::uint32_t Hash(std::string_view text) { return static_cast<std::uint32_t>(std::hash<std::string_view>{}(text)); }

/// At most half of the slots are used, which keeps the search for a free one short.
std::size_t SlotsFor(std::size_t records) { return std::max(kMinSlots, std::bit_ceil(records * 2 + 2)); }

/// @return zeroed memory, or NULL.
void* NewTable(std::size_t size) {
  if (size < kLargePage) {
    return std::calloc(size, 1);
  }
  void* table = AllocateLargePages(size);
  return table == nullptr ? nullptr : std::memset(table, 0, size);
}

}  // namespace

void KeywordIndex::Follow(const VEC_S& list) {
  if (IsUpToDate(list)) {
    return;
  }
  Note(list);
  Rebuild(SlotsFor(VEC_GetCount(&list)));
}

bool KeywordIndex::Holds(const char* keyword) const {
  if (table_ != nullptr) {
    return table_[SlotFor(keyword, Hash(keyword))].place != 0;
  }
  return FindSlot<ESH_HELP_INFO_S>(*list_, [&](const ESH_HELP_INFO_S& record) {
           return std::strcmp(record.szKeyWord, keyword) == 0;
         }) != nullptr;
}

void KeywordIndex::Added(const VEC_S& list, std::uint64_t index) {
  Note(list);
  if (table_ != nullptr && SlotsFor(used_ + 1) > slots_) {
    Grow();
  }
  Insert(EntryFor(index));
}

void KeywordIndex::Forget() {
  std::free(table_);
  *this = KeywordIndex{};
}

bool KeywordIndex::IsUpToDate(const VEC_S& list) const {
  return list_ == &list && array_ == list.ppvArray && max_index_ == list.ulMaxIndex && first_free_ == list.ulFirstFree;
}

void KeywordIndex::Note(const VEC_S& list) {
  list_ = &list;
  array_ = list.ppvArray;
  max_index_ = list.ulMaxIndex;
  first_free_ = list.ulFirstFree;
}

void KeywordIndex::Rebuild(std::size_t slots) {
  std::free(table_);
  table_ = static_cast<Entry*>(NewTable(slots * sizeof(Entry)));
  slots_ = slots;
  used_ = 0;
  ForEachHelpLine(*list_, [&](std::uint64_t index, const ESH_HELP_INFO_S&) { Insert(EntryFor(index)); });
}

void KeywordIndex::Grow() {
  const std::size_t old_slots = std::exchange(slots_, slots_ * kGrowth);
  Entry* const old = std::exchange(table_, static_cast<Entry*>(NewTable(slots_ * sizeof(Entry))));
  used_ = 0;
  for (const Entry& entry : std::span(old, old_slots)) {
    if (entry.place != 0 && KeywordOf(entry) != nullptr) {
      Insert(entry);
    }
  }
  std::free(old);
}

void KeywordIndex::Insert(Entry entry) {
  if (table_ != nullptr) {
    table_[SlotFor(KeywordOf(entry), entry.hash)] = entry;
    ++used_;
  }
}

KeywordIndex::Entry KeywordIndex::EntryFor(std::uint64_t index) const {
  Entry entry{static_cast<std::uint32_t>(index + 1), 0};
  entry.hash = Hash(KeywordOf(entry));
  return entry;
}

const char* KeywordIndex::KeywordOf(Entry entry) const {
  const auto* record = static_cast<const ESH_HELP_INFO_S*>(array_[entry.place - 1]);
  return record == nullptr ? nullptr : record->szKeyWord;
}

bool KeywordIndex::Is(Entry entry, const char* keyword) const {
  const char* own = KeywordOf(entry);
  return own != nullptr && std::strcmp(own, keyword) == 0;
}

std::size_t KeywordIndex::SlotFor(const char* keyword, std::uint32_t hash) const {
  std::size_t slot = hash & (slots_ - 1);
  while (table_[slot].place != 0 && (table_[slot].hash != hash || !Is(table_[slot], keyword))) {
    slot = (slot + 1) & (slots_ - 1);
  }
  return slot;
}
