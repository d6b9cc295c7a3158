#include "term/help_list.h"

#include <string_view>

#include "shell/command_tree.h"
#include "shell/result.h"
#include "term/help_order.h"
#include "term/help_records.h"
#include "term/keyword_index.h"

namespace {

KeywordIndex g_index;
bool g_line_was_lost = false;

}  // namespace

VEC_S* ESH_MakeHelpInfoVec(const char* word, const VEC_S* candidates) {
  g_line_was_lost = false;
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
  const std::string_view wanted(keyword);
  const std::string_view kept = wanted.substr(0, kHelpRoom - 1);
  const std::uint32_t hash = KeywordIndex::HashOf(kept);
  g_index.Follow(*list);
  if (g_index.Holds(wanted, hash)) {
    return kSuccess;
  }
  ESH_HELP_INFO_S* record = NewHelpRecord(kept, help);
  const std::uint64_t index = record == nullptr ? kNoIndex : VEC_Add(list, kNoIndex, record);
  if (index == kNoIndex) {
    FreeHelpRecord(record);
    NoteLostHelpLine();
    return kSuccess;
  }
  g_index.Added(*list, index, hash);
  return kSuccess;
}

void NoteLostHelpLine() { g_line_was_lost = true; }

bool HelpLineWasLost() { return g_line_was_lost; }

void ESH_FreeHelpInfoVec(VEC_S* list) {
  g_index.Forget();
  FreeVectorOf<ESH_HELP_INFO_S>(list, FreeHelpRecord);
}

void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi) {
  if (lo >= hi) {
    return;
  }
  g_index.Forget();  // it knows the lines by their indexes
  SortHelpLines({list->ppvArray + lo, static_cast<std::size_t>(hi - lo) + 1});
}
