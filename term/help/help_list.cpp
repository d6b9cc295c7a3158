#include "term/help/help_list.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string_view>
#include <utility>

#include "shell/command/command_tree.h"
#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

/// So sparse that a list grows to eight times its length before its table is made anew.
constexpr std::uint64_t kSlotsPerLine = 16;
constexpr std::uint64_t kLongList = 1000;

bool g_line_was_lost = false;

/// The lines of the list that was added to last, hashed by keyword: to look for one in the list itself would cost the
/// square of its length, which a directory of 100,000 files does not forgive.
struct {
  const VEC_S* list = nullptr;
  std::uint64_t first_free = 0;  // another one now means that others have changed the list
  std::uint64_t count = 0;
  std::uint64_t room = 0;
  std::unique_ptr<const ESH_HELP_INFO_S*[]> slots;
} g_seen;

void ForgetSeen() { g_seen = {}; }

/// @return where a keyword's line stands in the table, or NULL where it would.
const ESH_HELP_INFO_S*& SeenLine(std::string_view keyword) {
  std::uint64_t slot = std::hash<std::string_view>()(keyword) % g_seen.room;
  while (g_seen.slots[slot] != nullptr && keyword != g_seen.slots[slot]->szKeyWord) slot = (slot + 1) % g_seen.room;
  return g_seen.slots[slot];
}

/// Makes the table that of this list, with room for one line more.
/// @return false when memory is short.
bool SeeLinesOf(const VEC_S& list) {
  const bool is_known = g_seen.list == &list && g_seen.first_free == list.ulFirstFree;
  if (is_known && g_seen.count < g_seen.room / 2) return true;
  ForgetSeen();
  g_seen.room = kSlotsPerLine * std::max<std::uint64_t>(VEC_GetCount(&list), kUsualSlots);
  g_seen.slots.reset(new (std::nothrow) const ESH_HELP_INFO_S* [g_seen.room] {});
  if (g_seen.slots == nullptr) return false;
  ForEachSlot<ESH_HELP_INFO_S>(list, [](std::uint64_t, const ESH_HELP_INFO_S& line) {
    SeenLine(line.szKeyWord) = &line;
    ++g_seen.count;
  });
  g_seen.list = &list;
  return true;
}

using UniqueLine = std::unique_ptr<ESH_HELP_INFO_S, MemoryFreer>;

/// Gives a line to the list, unless one with its keyword is there.
/// @return false when memory is short.
bool AddLine(UniqueLine line, VEC_S& list) {
  ESH_HELP_INFO_S* added = line.get();
  if (added == nullptr || !SeeLinesOf(list)) return false;
  const ESH_HELP_INFO_S*& seen = SeenLine(added->szKeyWord);
  if (seen != nullptr) return true;
  if (VEC_Add(&list, kNoIndex, added) == kNoIndex) return false;
  seen = line.release();
  g_seen.first_free = list.ulFirstFree;
  ++g_seen.count;
  return true;
}

struct Number {
  unsigned long value;
  const char* rest;  // what follows it; the whole text when it does not begin with a number
};

Number LeadingNumber(const char* text) {
  char* rest = nullptr;
  const unsigned long value = std::strtoul(text, &rest, 10);
  return {value, rest};
}

}  // namespace

VEC_S* ESH_MakeHelpInfoVec(const char* word, const VEC_S* candidates) {
  g_line_was_lost = false;
  VEC_S* list = VEC_Alloc(kUsualSlots);
  if (list == nullptr) return nullptr;
  ForEachSlot<ESH_CMD_ELEMENT_S>(*candidates, [&](std::uint64_t, const ESH_CMD_ELEMENT_S& element) {
    if (element.pfnHelp == nullptr)
      ESH_NewHelpInfo(element.pcKeyWord, element.pcHelp, list);
    else
      element.pfnHelp(word, list, &element);
  });
  return list;
}

std::uint32_t ESH_NewHelpInfo(const char* keyword, const char* help, VEC_S* list) {
  UniqueLine line(static_cast<ESH_HELP_INFO_S*>(std::malloc(sizeof(ESH_HELP_INFO_S))));
  if (line != nullptr) {
    CopyText(line->szKeyWord, keyword);
    CopyText(line->szHelp, help);
  }
  if (!AddLine(std::move(line), *list)) NoteLostHelpLine();
  return kSuccess;
}

void NoteLostHelpLine() { g_line_was_lost = true; }

bool HelpLineWasLost() { return g_line_was_lost; }

void RemoveHelpLine(VEC_S& list, std::uint64_t index) {
  ForgetSeen();
  std::free(VEC_Del(&list, index));
}

void ESH_FreeHelpInfoVec(VEC_S* list) {
  ForgetSeen();
  const bool is_long = VEC_GetCount(list) > kLongList;
  FreeVectorOf<ESH_HELP_INFO_S>(list, std::free);
  // The allocator keeps a few records at hand. A sorted list leaves them anywhere in its memory, nearly all of which
  // would then stay the shell's.
  if (is_long) malloc_trim(0);
}

int CmpHelpString(const char* a, const char* b) {
  // No number begins so high, nor does "<cr>", but nearly every name does, and a sort asks often.
  if (*a > '<' && *b > '<') return std::strcmp(a, b);
  if (std::strcmp(a, kCrWord) == 0) return 1;
  if (std::strcmp(b, kCrWord) == 0) return -1;
  const Number first = LeadingNumber(a);
  const Number second = LeadingNumber(b);
  if (*first.rest != '\0' && *second.rest != '\0') return std::strcmp(a, b);
  if (*first.rest != '\0' || *second.rest != '\0') return *first.rest != '\0' ? 1 : -1;
  if (first.value == second.value) return 0;
  return first.value < second.value ? -1 : 1;
}

void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi) {
  if (lo >= hi) return;
  // The library's quicksort: it keeps its time also where the order of the list splits badly.
  std::sort(list->ppvArray + lo, list->ppvArray + hi + 1, [](const void* a, const void* b) {
    return CmpHelpString(static_cast<const char*>(a), static_cast<const char*>(b)) < 0;
  });
}
