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

/// Where the lines of the list that was added to last stand in it, hashed by keyword: to look for one in the list
/// itself would cost the square of its length, which a directory of 100,000 files does not forgive.
struct {
  const VEC_S* list = nullptr;
  std::uint64_t first_free = 0;  ///< another one now means that others have changed the list
  std::uint64_t count = 0;
  std::uint64_t room = 0;
  std::unique_ptr<std::uint64_t[]> slots;  ///< indexes plus one; 0: nothing
} g_seen;

void ForgetSeen() { g_seen = {}; }

bool HasLine(const VEC_S& list, std::uint64_t index, std::string_view keyword) {
  const void* slot = index < list.ulCapacity ? list.ppvArray[index] : nullptr;
  const auto* line = static_cast<const ESH_HELP_INFO_S*>(slot);
  return line != nullptr && keyword == line->szKeyWord;
}

/// @return where a keyword's line stands in the table, or 0 where it would.
std::uint64_t& SeenLine(const VEC_S& list, std::string_view keyword) {
  std::uint64_t slot = std::hash<std::string_view>()(keyword) % g_seen.room;
  while (g_seen.slots[slot] != 0 && !HasLine(list, g_seen.slots[slot] - 1, keyword)) slot = (slot + 1) % g_seen.room;
  return g_seen.slots[slot];
}

/// Makes the table that of this list, with room for one line more.
/// @return false when memory is short.
bool SeeLinesOf(const VEC_S& list) {
  const bool is_known = g_seen.list == &list && g_seen.first_free == list.ulFirstFree;
  if (is_known && g_seen.count < g_seen.room / 2) return true;
  ForgetSeen();
  g_seen.room = kSlotsPerLine * std::max<std::uint64_t>(VEC_GetCount(&list), kUsualSlots);
  g_seen.slots.reset(new (std::nothrow) std::uint64_t[g_seen.room]{});
  if (g_seen.slots == nullptr) return false;
  ForEachSlot<ESH_HELP_INFO_S>(list, [&list](std::uint64_t index, const ESH_HELP_INFO_S& line) {
    SeenLine(list, line.szKeyWord) = index + 1;
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
  std::uint64_t& seen = SeenLine(list, added->szKeyWord);
  if (seen != 0) return true;
  const std::uint64_t index = VEC_Add(&list, kNoIndex, added);
  if (index == kNoIndex) return false;
  (void)line.release();  // the list's now
  seen = index + 1;
  g_seen.first_free = list.ulFirstFree;
  ++g_seen.count;
  return true;
}

struct Number {
  unsigned long value;
  const char* rest;  ///< what follows it; the whole text when it does not begin with a number
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

void RemoveHelpLine(VEC_S& list, std::uint64_t index) { std::free(VEC_Del(&list, index)); }

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
  if (*first.rest != '\0') return *second.rest != '\0' ? std::strcmp(a, b) : 1;
  if (*second.rest != '\0' || first.value < second.value) return -1;
  return first.value > second.value ? 1 : 0;
}

// Not the library's sort: numbers that are equal, such as 01 and 001, come in the order that these exchanges leave.
void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi) {
  void** lines = list->ppvArray;
  const auto is_before = [](const void* a, const void* b) {
    return CmpHelpString(static_cast<const char*>(a), static_cast<const char*>(b)) < 0;
  };
  while (lo < hi) {
    const void* pivot = lines[(lo + hi) / 2];
    std::int64_t left = lo;
    std::int64_t right = hi;
    while (left <= right) {
      while (is_before(lines[left], pivot)) ++left;  // the pivot, or what was swapped with it, ends this, and that
      while (is_before(pivot, lines[right])) --right;
      if (left <= right) std::swap(lines[left++], lines[right--]);
    }
    QuickSortStrVec(list, lo, right);
    lo = left;
  }
}
