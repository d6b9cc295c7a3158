#include "term/help/completion.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "shell/command/command_tree.h"
#include "shell/command/match.h"
#include "shell/command/parameter.h"
#include "shell/command/words.h"
#include "term/help/help_list.h"
#include "term/line_state.h"
#include "util/ascii.h"
#include "util/fixed_text.h"

ESH_TAB_STATE_S g_stTabState;

namespace {

constexpr std::size_t kTabLineRoom = kMaxCommandLine + 1;

void ForgetCycle() {
  g_stTabState.szPrefix[0] = '\0';
  g_stTabState.szLast[0] = '\0';
}

/// A finished last word or another number of words is another word than the cycle began with.
void NoteWordCount(std::uint64_t count, std::string_view line) {
  if (line.ends_with(' ') || count != g_stTabState.ulWordNum) {
    g_stTabState.szPrefix[0] = '\0';
    g_stTabState.ulWordNum = count;
  }
}

bool CycleGoesOn(const char* word) {
  return g_stTabState.szPrefix[0] != '\0' &&
         (EqualsIgnoringCase(word, g_stTabState.szPrefix) || EqualsIgnoringCase(word, g_stTabState.szLast));
}

void DropPlaceholders(VEC_S& list) {
  ForEachSlot<ESH_HELP_INFO_S>(
      list,
      [&](std::uint64_t index, ESH_HELP_INFO_S& line) {
        if (ESH_Variable(line.szKeyWord) == 1 || std::strcmp(line.szKeyWord, kCrWord) == 0) RemoveHelpLine(list, index);
      });
}

/// What may continue the last word, in the order of the command tree; NULL when the words do not match
/// or memory is short: from a part of the names the only one could not be told, nor what all of them share.
/// @param elements an empty vector for the elements that match.
UniqueHelpList MakeCandidates(const VEC_S& words, std::uint64_t count, const char* word, VEC_S& elements) {
  std::uint64_t failed = 0;
  if (ESH_GetCmdElementVec(&words, count, ESH_WORD_PARTIAL, &elements, &failed) < ESH_MATCH_PARAM) return nullptr;
  UniqueHelpList list(ESH_MakeHelpInfoVec(word, &elements));
  if (list == nullptr || HelpLineWasLost()) return nullptr;
  DropPlaceholders(*list);
  return list;
}

/// The first of the shortest candidates.
std::string_view Shortest(const VEC_S& candidates) {
  std::string_view shortest;
  ForEachSlot<ESH_HELP_INFO_S>(candidates, [&](std::uint64_t, const ESH_HELP_INFO_S& candidate) {
    const std::string_view keyword(candidate.szKeyWord);
    if (shortest.empty() || keyword.size() < shortest.size()) shortest = keyword;
  });
  return shortest;
}

/// The longest beginning that all candidates share, ignoring case, in the spelling of the shortest.
/// @param known characters that are known to be shared.
std::string_view CommonPrefix(const VEC_S& candidates, std::size_t known) {
  const std::string_view model = Shortest(candidates);
  std::size_t shared = model.size();
  ForEachSlot<ESH_HELP_INFO_S>(candidates, [&](std::uint64_t, const ESH_HELP_INFO_S& candidate) {
    std::size_t agreed = known;
    while (agreed < shared && LowerCase(candidate.szKeyWord[agreed]) == LowerCase(model[agreed])) ++agreed;
    shared = std::min(shared, agreed);
  });
  return model.substr(0, shared);
}

void FirstTab(const VEC_S& words, char* line, const VEC_S& candidates, const char* word) {
  const std::size_t typed = std::strlen(word);
  CopyText(g_stTabState.szPrefix, CommonPrefix(candidates, typed));
  if (std::strlen(g_stTabState.szPrefix) <= typed) {
    TabPrintFirst(&words, line, &candidates, word);
    return;
  }
  CmdTabModifyBuf(&words, line, g_stTabState.szPrefix, 0);
  CopyText(g_stTabState.szLast, g_stTabState.szPrefix);
}

/// The candidate that was put in last, or else one in another case. Names that differ in case alone are several, and
/// the cycle would never get past the second if it were taken for the first.
const ESH_HELP_INFO_S* LastPutIn(const VEC_S& candidates) {
  const ESH_HELP_INFO_S* exact = FindSlot<ESH_HELP_INFO_S>(
      candidates,
      [](const ESH_HELP_INFO_S& candidate) { return std::strcmp(candidate.szKeyWord, g_stTabState.szLast) == 0; });
  return exact != nullptr ? exact : FindSlot<ESH_HELP_INFO_S>(candidates, [](const ESH_HELP_INFO_S& candidate) {
    return EqualsIgnoringCase(candidate.szKeyWord, g_stTabState.szLast);
  });
}

/// The candidate after the one that was put in last; the first one after the last, or when that one is gone.
const ESH_HELP_INFO_S* NextInCycle(const VEC_S& candidates) {
  const ESH_HELP_INFO_S* last = LastPutIn(candidates);
  const ESH_HELP_INFO_S* first = nullptr;
  bool last_seen = false;
  const ESH_HELP_INFO_S* next = FindSlot<ESH_HELP_INFO_S>(candidates, [&](const ESH_HELP_INFO_S& candidate) {
    first = first == nullptr ? &candidate : first;
    const bool is_next = last_seen;
    last_seen = last_seen || &candidate == last;
    return is_next;
  });
  return next == nullptr ? first : next;
}

void FurtherTab(const VEC_S& words, char* line, const VEC_S& candidates) {
  const ESH_HELP_INFO_S* next = NextInCycle(candidates);
  CmdTabModifyBuf(&words, line, next->szKeyWord, 0);
  CopyText(g_stTabState.szLast, next->szKeyWord);
}

void Complete(const VEC_S& words, char* line, const VEC_S& candidates, const char* word) {
  if (VEC_GetCount(&candidates) == 1)
    TabPrintFirst(&words, line, &candidates, word);
  else if (g_stTabState.szPrefix[0] == '\0')
    FirstTab(words, line, candidates, word);
  else
    FurtherTab(words, line, candidates);
}

}  // namespace

void ESH_ResetTabState() {
  g_stTabState.ulWordNum = 0;
  g_stTabState.usAddBlank = 1;
  ForgetCycle();
}

void ESH_TabComplete(VEC_S* words, char* line) {
  const std::uint64_t count = VEC_GetCount(words);
  if (count == 0) {
    ESH_ResetTabState();
    line[0] = '\0';
    return;
  }
  const UniqueVector elements(VEC_Alloc(kUsualSlots));
  if (elements == nullptr) return;
  char* word = WordAt(*words, count - 1)->pcWord;
  NoteWordCount(count, line);
  if (CycleGoesOn(word))
    CopyBounded(word, kWordRoom, g_stTabState.szPrefix);
  else
    ForgetCycle();
  const UniqueHelpList candidates = MakeCandidates(*words, count, word, *elements);
  if (VEC_GetCount(candidates.get()) == 0)
    ESH_ResetTabState();
  else
    Complete(*words, line, *candidates, word);
}

void TabPrintFirst(const VEC_S* words, char* line, const VEC_S* candidates, const char* typed) {
  const bool only_one = VEC_GetCount(candidates) == 1;
  const ESH_HELP_INFO_S* chosen = FindSlot<ESH_HELP_INFO_S>(*candidates, [&](const ESH_HELP_INFO_S& candidate) {
    return only_one || !EqualsIgnoringCase(candidate.szKeyWord, typed);
  });
  if (chosen == nullptr) return;
  CmdTabModifyBuf(words, line, chosen->szKeyWord, only_one ? 1 : 0);
  CopyText(g_stTabState.szLast, chosen->szKeyWord);
}

void CmdTabModifyBuf(const VEC_S* words, char* line, const char* text, std::uint16_t addBlank) {
  const std::uint64_t first = WordAt(*words, 0)->ulStart;
  const std::uint64_t last = WordAt(*words, VEC_GetCount(words) - 1)->ulStart;
  CopyBounded(line + last, kTabLineRoom - last, text);
  const std::size_t end = last + std::strlen(text);
  if (g_stTabState.usAddBlank == 1 && addBlank == 1 && end < kTabLineRoom - 1) {
    line[end] = ' ';
    line[end + 1] = '\0';
  }
  std::memmove(line, line + first, std::strlen(line + first) + 1);
}
