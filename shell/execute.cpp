#include "shell/execute.h"

#include <cstdint>
#include <optional>

#include "shell/command/command_tree.h"
#include "shell/command/match.h"
#include "shell/command/match_error.h"
#include "shell/command/words.h"
#include "util/vector.h"

namespace {

/// The first position at which different commands were possible. A later word may still settle which is meant.
using AmbiguousPosition = std::optional<std::uint64_t>;

/// Matches all words. @return false when the line cannot be a command, which has then been reported.
bool MatchWords(const VEC_S& words, std::uint64_t count, VEC_S& candidates, AmbiguousPosition& ambiguous) {
  for (std::uint64_t i = 0; i < count; ++i) {
    ESH_SelectNextCmdElment(&candidates);
    const std::uint32_t level = ESH_FilterCmdElment(&candidates, WordAt(words, i)->pcWord);
    if (level == ESH_MATCH_AMBIGUOUS && !ambiguous) ambiguous = i;
    if (level >= ESH_MATCH_AMBIGUOUS) continue;
    ESH_PrintErrorInfo(ambiguous ? std::uint32_t{ESH_MATCH_AMBIGUOUS} : level, ambiguous.value_or(i), &words);
    return false;
  }
  return true;
}

void ReportUnfinished(const VEC_S& words, std::uint64_t count, std::uint64_t ends, AmbiguousPosition ambiguous) {
  if (ends == 0 && !ambiguous)
    ESH_PrintErrorInfo(ESH_MATCH_INCOMPLETE, count - 1, &words);
  else
    ESH_PrintErrorInfo(ESH_MATCH_AMBIGUOUS, ambiguous.value_or(count), &words);
}

void RecordParameters(const ESH_CMD_THREAD_S& thread, const VEC_S& words) {
  std::uint64_t index = 0;
  for (const ESH_CMD_ELEMENT_S* element = FirstElement(thread); element != nullptr && element->ulType != ESH_ELEM_CR;
       element = NextElement(thread, *element)) {
    if (element->pfnRecord != nullptr)
      (void)element->pfnRecord(WordAt(words, index)->pcWord);  // the word has been checked; the handler looks again
    ++index;
  }
}

}  // namespace

void ESH_CmdExecute(const VEC_S* words) {
  const UniqueVector candidates(VEC_Alloc(kNoSlots));
  const std::uint64_t count = VEC_GetCount(words);
  AmbiguousPosition ambiguous;
  if (candidates == nullptr || count == 0 || !MatchWords(*words, count, *candidates, ambiguous)) return;
  ESH_SelectNextCmdElment(candidates.get());
  KeepCommandEnds(*candidates);
  const std::uint64_t ends = VEC_GetCount(candidates.get());
  if (ends != 1) {
    ReportUnfinished(*words, count, ends, ambiguous);
    return;
  }
  const auto* end = FindSlot<ESH_CMD_ELEMENT_S>(*candidates, [](const ESH_CMD_ELEMENT_S&) { return true; });
  const ESH_CMD_THREAD_S* thread = ThreadOfCr(*end);
  RecordParameters(*thread, *words);
  (void)thread->pfnProc();  // handlers print their own messages
}
