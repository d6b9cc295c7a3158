#include "term/help/help_list.h"

#include <search.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "shell/command/command_tree.h"
#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

bool g_line_was_lost = false;

/// The lines of the list that was added to last, as a tree beside it (tsearch(3)): to look for a keyword in the list
/// itself would cost the square of its length, which a directory of 100,000 files does not forgive.
struct {
  const VEC_S* list = nullptr;
  std::uint64_t first_free = 0;  // another one now means that others have changed the list
  void* tree = nullptr;
} g_seen;

const ESH_HELP_INFO_S& LineOf(const void* record) { return *static_cast<const ESH_HELP_INFO_S*>(record); }

int CompareKeywords(const void* a, const void* b) { return std::strcmp(LineOf(a).szKeyWord, LineOf(b).szKeyWord); }

void ForgetSeen() {
  tdestroy(g_seen.tree, [](void*) {});
  g_seen = {};
}

/// @return false when memory is short.
bool SeeLinesOf(const VEC_S& list) {
  if (g_seen.list == &list && g_seen.first_free == list.ulFirstFree) return true;
  ForgetSeen();
  bool all_seen = true;
  ForEachSlot<ESH_HELP_INFO_S>(list, [&](std::uint64_t, ESH_HELP_INFO_S& line) {
    all_seen = tsearch(&line, &g_seen.tree, CompareKeywords) != nullptr && all_seen;
  });
  g_seen.list = all_seen ? &list : nullptr;
  return all_seen;
}

using UniqueLine = std::unique_ptr<ESH_HELP_INFO_S, MemoryFreer>;

/// Puts a line into the tree, then into the list, which owns it from then on.
/// @return false when memory is short.
bool AddLine(UniqueLine line, VEC_S& list) {
  if (line == nullptr || !SeeLinesOf(list)) return false;
  void* const* seen = static_cast<void**>(tsearch(line.get(), &g_seen.tree, CompareKeywords));
  if (seen == nullptr || *seen != line.get()) return seen != nullptr;  // listed already
  if (VEC_Add(&list, kNoIndex, line.get()) == kNoIndex) {
    tdelete(line.get(), &g_seen.tree, CompareKeywords);
    return false;
  }
  (void)line.release();
  g_seen.first_free = list.ulFirstFree;
  return true;
}

struct Number {
  unsigned long value;
  const char* rest;  // what follows it; the whole text when it does not begin with a number
};

Number LeadingNumber(const char* text) {
  if (*text > '9') return {0, text};  // no number begins like this, but nearly every name does, and a sort asks often
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
  FreeVectorOf<ESH_HELP_INFO_S>(list, std::free);
}

int CmpHelpString(const char* a, const char* b) {
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
