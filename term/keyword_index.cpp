#include "term/keyword_index.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "term/help_list.h"
#include "util/large_pages.h"
#include "util/vector.h"

namespace {

constexpr std::size_t kMinSlots = 64;
constexpr std::size_t kGrowth = 4;  // the entries must all be placed anew, so not often

/// At most half of the slots are used, which keeps the search for a free one short.
std::size_t SlotsFor(std::size_t records) { return std::max(kMinSlots, std::bit_ceil(records * 2 + 2)); }

/// The hash's other end chooses the slot, so that neighbours have tags of their own.
std::uint8_t TagOf(std::uint32_t hash) { return static_cast<std::uint8_t>(hash >> 24 | 1); }

}  // namespace

std::uint32_t KeywordIndex::HashOf(std::string_view keyword) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>{}(keyword));
}

void KeywordIndex::Follow(const VEC_S& list) {
  if (IsUpToDate(list)) {
    return;
  }
  Forget();
  Note(list);
  table_ = NewTable(SlotsFor(VEC_GetCount(&list)));
  ForEachHelpLine(list, [&](std::uint64_t index, const ESH_HELP_INFO_S& line) {
    Insert({static_cast<std::uint32_t>(index), HashOf(line.szKeyWord)});
  });
}

bool KeywordIndex::Holds(std::string_view keyword, std::uint32_t hash) const {
  if (table_.entries != nullptr) {
    return (newest_ && Is(*newest_, keyword, hash)) || IsInTable(keyword, hash);
  }
  return FindSlot<ESH_HELP_INFO_S>(*list_, [&](const ESH_HELP_INFO_S& line) { return line.szKeyWord == keyword; }) !=
         nullptr;
}

void KeywordIndex::Added(const VEC_S& list, std::uint64_t index, std::uint32_t hash) {
  Note(list);
  InsertNewest();
  newest_ = {static_cast<std::uint32_t>(index), hash};
  if (table_.entries != nullptr) {
    __builtin_prefetch(table_.tags + HomeOf(hash), 1);
    __builtin_prefetch(table_.entries + HomeOf(hash), 1);
  }
}

void KeywordIndex::Forget() {
  std::free(table_.entries);
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

KeywordIndex::Table KeywordIndex::NewTable(std::size_t slots) {
  auto* entries = static_cast<Entry*>(AllocateLargePages(slots * (sizeof(Entry) + sizeof(Tag))));
  if (entries == nullptr) {
    return {};
  }
  auto* tags = reinterpret_cast<Tag*>(entries + slots);
  std::fill_n(tags, slots, kFree);
  return {entries, tags, slots, 0};
}

void KeywordIndex::Grow() {
  const Table old = table_;
  table_ = NewTable(old.slots * kGrowth);
  for (std::size_t slot = 0; slot < old.slots; ++slot) {
    if (old.tags[slot] != kFree && KeywordOf(old.entries[slot]) != nullptr) {
      Insert(old.entries[slot]);
    }
  }
  std::free(old.entries);
}

void KeywordIndex::InsertNewest() {
  if (!newest_) {
    return;
  }
  if (table_.entries != nullptr && SlotsFor(table_.used + 1) > table_.slots) {
    Grow();
  }
  Insert(*newest_);
}

void KeywordIndex::Insert(Entry entry) {
  if (table_.entries == nullptr) {
    return;
  }
  std::size_t slot = HomeOf(entry.hash);
  while (table_.tags[slot] != kFree) {
    slot = NextSlot(slot);
  }
  table_.tags[slot] = TagOf(entry.hash);
  table_.entries[slot] = entry;
  ++table_.used;
}

const char* KeywordIndex::KeywordOf(Entry entry) const {
  const auto* line = static_cast<const ESH_HELP_INFO_S*>(array_[entry.index]);
  return line == nullptr ? nullptr : line->szKeyWord;
}

bool KeywordIndex::Is(Entry entry, std::string_view keyword, std::uint32_t hash) const {
  const char* own = entry.hash == hash ? KeywordOf(entry) : nullptr;
  return own != nullptr && own == keyword;
}

bool KeywordIndex::IsInTable(std::string_view keyword, std::uint32_t hash) const {
  const Tag tag = TagOf(hash);
  for (std::size_t slot = HomeOf(hash); table_.tags[slot] != kFree; slot = NextSlot(slot)) {
    if (table_.tags[slot] == tag && Is(table_.entries[slot], keyword, hash)) {
      return true;
    }
  }
  return false;
}
