#include "term/keyword_index.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <utility>

#include "term/help_list.h"
#include "util/vector.h"

namespace {

constexpr std::size_t kMinSlots = 64;

std::size_t Hash(std::string_view text) { return std::hash<std::string_view>{}(text); }

/// At most half of the slots are used, which keeps the search for a free one short.
std::size_t SlotsFor(std::size_t records) { return std::max(kMinSlots, std::bit_ceil(records * 2 + 2)); }

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
    return table_[SlotFor(keyword, Hash(keyword))].record != nullptr;
  }
  return FindSlot<ESH_HELP_INFO_S>(*list_, [&](const ESH_HELP_INFO_S& record) {
           return std::strcmp(record.szKeyWord, keyword) == 0;
         }) != nullptr;
}

void KeywordIndex::Added(const VEC_S& list, const ESH_HELP_INFO_S& record) {
  Note(list);
  if (table_ != nullptr && SlotsFor(used_ + 1) > slots_) {
    Grow();
  }
  Insert({&record, Hash(record.szKeyWord)});
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
  table_ = static_cast<Entry*>(std::calloc(slots, sizeof(Entry)));
  slots_ = slots;
  used_ = 0;
  ForEachSlot<ESH_HELP_INFO_S>(*list_, [&](std::uint64_t, const ESH_HELP_INFO_S& record) {
    Insert({&record, Hash(record.szKeyWord)});
  });
}

void KeywordIndex::Grow() {
  Entry* const old = std::exchange(table_, static_cast<Entry*>(std::calloc(slots_ * 2, sizeof(Entry))));
  const std::size_t old_slots = std::exchange(slots_, slots_ * 2);
  used_ = 0;
  for (std::size_t i = 0; i < old_slots; ++i) {
    if (old[i].record != nullptr) {
      Insert(old[i]);
    }
  }
  std::free(old);
}

void KeywordIndex::Insert(Entry entry) {
  if (table_ != nullptr) {
    table_[SlotFor(entry.record->szKeyWord, entry.hash)] = entry;
    ++used_;
  }
}

std::size_t KeywordIndex::SlotFor(std::string_view keyword, std::size_t hash) const {
  std::size_t slot = hash & (slots_ - 1);
  while (table_[slot].record != nullptr && (table_[slot].hash != hash || keyword != table_[slot].record->szKeyWord)) {
    slot = (slot + 1) & (slots_ - 1);
  }
  return slot;
}
