#include "term/keyword_index.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "term/help_list.h"
#include "util/vector.h"

namespace {

constexpr std::size_t kMinSlots = 64;

/// FNV-1a, 64 bits.
std::uint64_t Hash(const char* text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (; *text != '\0'; ++text) {
    hash = (hash ^ static_cast<unsigned char>(*text)) * 0x100000001b3U;
  }
  return hash;
}

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
    return table_[SlotFor(keyword)] != nullptr;
  }
  return FindSlot<ESH_HELP_INFO_S>(*list_, [&](const ESH_HELP_INFO_S& record) {
           return std::strcmp(record.szKeyWord, keyword) == 0;
         }) != nullptr;
}

void KeywordIndex::Added(const VEC_S& list, const ESH_HELP_INFO_S& record) {
  Note(list);
  if (table_ == nullptr) {
    return;
  }
  if (SlotsFor(used_ + 1) > slots_) {
    Rebuild(slots_ * 2);
    return;
  }
  Insert(record);
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
  table_ = static_cast<const ESH_HELP_INFO_S**>(std::calloc(slots, sizeof(void*)));
  slots_ = slots;
  used_ = 0;
  if (table_ != nullptr) {
    ForEachSlot<ESH_HELP_INFO_S>(*list_, [&](std::uint64_t, const ESH_HELP_INFO_S& record) { Insert(record); });
  }
}

void KeywordIndex::Insert(const ESH_HELP_INFO_S& record) {
  table_[SlotFor(record.szKeyWord)] = &record;
  ++used_;
}

std::size_t KeywordIndex::SlotFor(const char* keyword) const {
  std::size_t slot = Hash(keyword) & (slots_ - 1);
  while (table_[slot] != nullptr && std::strcmp(table_[slot]->szKeyWord, keyword) != 0) {
    slot = (slot + 1) & (slots_ - 1);
  }
  return slot;
}
