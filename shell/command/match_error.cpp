#include "shell/command/match_error.h"

#include <cstdio>
#include <cstring>

#include "shell/command/command_tree.h"
#include "shell/command/match.h"
#include "shell/command/words.h"
#include "util/vector.h"

namespace {

/// In the order of the match levels.
constexpr const char* kMessages[] = {
    " % Unrecognized command found at '^' position.\r\n", " % Too many parameters found at '^' position.\r\n",
    " % Wrong parameter found at '^' position.\r\n",      " % Incomplete command found at '^' position.\r\n",
    " % Ambiguous command found at '^' position.\r\n",
};
static_assert(sizeof(kMessages) / sizeof(kMessages[0]) == ESH_MATCH_PARAM);

/// Where the caret stands in the line: at the word, or for what is missing behind it, one column past its end.
std::uint64_t CaretIndex(const ESH_MARK_STR_S& word, bool behind) {
  return behind ? word.ulStart + std::strlen(word.pcWord) + 1 : word.ulStart;
}

}  // namespace

void ESH_PrintErrorInfo(std::uint32_t level, std::uint64_t wordIndex, const VEC_S* words) {
  const ESH_MARK_STR_S* word = WordAt(*words, wordIndex);
  const bool behind = level == ESH_MATCH_INCOMPLETE || word == nullptr;
  word = word == nullptr ? WordAt(*words, words->ulMaxIndex) : word;
  const std::uint64_t prompt_length = std::strlen(g_pstEshCurrentView->pcPrompt);
  const std::uint64_t column = prompt_length + (word == nullptr ? 0 : CaretIndex(*word, behind));
  std::printf("%*s^", static_cast<int>(column), "");
  if (level > ESH_MATCH_AMBIGUOUS) {
    std::putchar(' ');
    return;
  }
  std::printf("\r\n%s", kMessages[level]);
}
