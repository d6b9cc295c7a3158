#include "shell/command/match.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "shell/command/command_tree.h"
#include "shell/command/parameter.h"
#include "shell/command/words.h"
#include "util/ascii.h"
#include "util/result.h"
#include "util/vector.h"

namespace {

struct Verdict {
  std::uint32_t level;
  bool keep;
};

bool IsKeyword(const ESH_CMD_ELEMENT_S& element) { return element.ulType == ESH_ELEM_KEYWORD; }

bool IsCr(const ESH_CMD_ELEMENT_S& element) { return element.ulType == ESH_ELEM_CR; }

bool BeginsWith(const ESH_CMD_ELEMENT_S& keyword, std::string_view word) {
  return BeginsIgnoringCase({keyword.pcKeyWord, keyword.ulKeyLen}, word);
}

/// The value rule of a parameter's type, on a complete word.
bool IsValidValue(const ESH_CMD_ELEMENT_S& element, const char* word) {
  switch (element.ulType) {
    case ESH_ELEM_STRING:
      return ESH_CheckString(word, element.ulMin, element.ulMax) == 1;
    case ESH_ELEM_IPV4:
    case ESH_ELEM_IPV4MASK:
      return ESH_CheckIPv4(word) == 1;
    case ESH_ELEM_IPV6:
      return ESH_CheckIPv6(word) == 1;
    case ESH_ELEM_IPV6PREFIX:
      return ESH_CheckIPv6Prefix(word) == 1;
    default:  // ESH_ELEM_INTEGER
      return ESH_CheckInteger(word, element.ulMin, element.ulMax) == 1;
  }
}

Verdict JudgeKeyword(const ESH_CMD_ELEMENT_S& element, std::string_view word) {
  if (!BeginsWith(element, word)) return {ESH_MATCH_NONE, false};
  return {word.size() == element.ulKeyLen ? ESH_MATCH_EXACT : ESH_MATCH_PARTIAL, true};
}

Verdict JudgeParameter(const ESH_CMD_ELEMENT_S& element, const char* word) {
  if (!IsValidValue(element, word)) return {ESH_MATCH_WRONG_PARAM, false};
  if (element.pfnCheck == nullptr) return {ESH_MATCH_PARAM, true};
  switch (element.pfnCheck(word)) {
    case 1:
      return {ESH_MATCH_PARAM, true};
    case 0:
      return {ESH_MATCH_WRONG_PARAM, false};
    default:
      return {ESH_MATCH_WRONG_PARAM, true};  // an answer that is neither yes nor no: not valid, yet not ruled out
  }
}

/// @param word terminated.
Verdict Judge(const ESH_CMD_ELEMENT_S& element, std::string_view word) {
  switch (element.ulType) {
    case ESH_ELEM_KEYWORD:
      return JudgeKeyword(element, word);
    case ESH_ELEM_CR:
      return {ESH_MATCH_TOO_MANY, false};
    case ESH_ELEM_STRING:
    case ESH_ELEM_IPV4:
    case ESH_ELEM_IPV4MASK:
    case ESH_ELEM_IPV6:
    case ESH_ELEM_IPV6PREFIX:
    case ESH_ELEM_INTEGER:
      return JudgeParameter(element, word.data());
    default:
      return {ESH_MATCH_NONE, false};
  }
}

template <typename Keep>
void KeepOnly(VEC_S& candidates, Keep keep) {
  ForEachSlot<ESH_CMD_ELEMENT_S>(
      candidates,
      [&](std::uint64_t index, const ESH_CMD_ELEMENT_S& element) {
        if (!keep(element)) VEC_Del(&candidates, index);
      });
}

/// The same keyword in several commands is one choice; different texts are several.
bool HoldsDifferentTexts(const VEC_S& candidates) {
  const char* first = nullptr;
  return FindSlot<ESH_CMD_ELEMENT_S>(candidates, [&](const ESH_CMD_ELEMENT_S& element) {
           first = first == nullptr ? element.pcKeyWord : first;
           return first != element.pcKeyWord && !EqualsIgnoringCase(first, element.pcKeyWord);
         }) != nullptr;
}

bool HoldsOnly(std::string_view word, bool (*allowed)(char)) { return std::all_of(word.begin(), word.end(), allowed); }

bool IsIPv4Character(char c) { return IsDigit(c) || c == '.'; }

bool IsIPv6Character(char c) { return IsHexDigit(c) || c == ':' || c == '.'; }

bool IsIPv6PrefixCharacter(char c) { return IsIPv6Character(c) || c == '/'; }

/// Whether a word that is still being typed may become a value of this element.
bool MayContinue(const ESH_CMD_ELEMENT_S& element, const char* word) {
  switch (element.ulType) {
    case ESH_ELEM_KEYWORD:
      return BeginsWith(element, word);
    case ESH_ELEM_STRING:
      return HoldsOnly(word, IsPrintable);
    case ESH_ELEM_IPV4:
    case ESH_ELEM_IPV4MASK:
      return HoldsOnly(word, IsIPv4Character);
    case ESH_ELEM_IPV6:
      return HoldsOnly(word, IsIPv6Character);
    case ESH_ELEM_IPV6PREFIX:
      return HoldsOnly(word, IsIPv6PrefixCharacter);
    case ESH_ELEM_INTEGER:
      return IsValidValue(element, word);
    default:
      return false;
  }
}

/// Adds what every command of the view begins with; there is room for it.
void AddFirstElements(VEC_S& candidates) {
  ForEachSlot<ESH_CMD_THREAD_S>(
      *g_pstEshCurrentView->pstCmdVec,
      [&](std::uint64_t, const ESH_CMD_THREAD_S& thread) { VEC_Add(&candidates, kNoIndex, FirstElement(thread)); });
}

/// Adds what follows the candidates; there is room for it.
void AddSuccessors(const VEC_S& candidates, VEC_S& next) {
  ForEachSlot<ESH_CMD_ELEMENT_S>(
      candidates,
      [&](std::uint64_t, const ESH_CMD_ELEMENT_S& element) {
        if (!IsCr(element)) VEC_Add(&next, kNoIndex, static_cast<ESH_CMD_ELEMENT_S*>(element.pstNext));
      });
}

}  // namespace

void KeepCommandEnds(VEC_S& candidates) { KeepOnly(candidates, IsCr); }

void ESH_SelectNextCmdElment(VEC_S* candidates) {
  const std::uint64_t count = VEC_GetCount(candidates);
  VEC_S next{};
  if (VEC_Enlarge(&next, count == 0 ? g_pstEshCurrentView->pstCmdVec->ulCapacity : count) != kSuccess)
    return VEC_Release(candidates);  // rather none than a few, among which an ambiguous word could look settled
  if (count == 0)
    AddFirstElements(next);
  else
    AddSuccessors(*candidates, next);
  std::swap(*candidates, next);
  VEC_Release(&next);
}

std::uint32_t ESH_FilterCmdElment(VEC_S* candidates, const char* typed) {
  const std::string_view word(typed);
  std::uint32_t level = ESH_MATCH_NONE;
  KeepOnly(*candidates, [&](const ESH_CMD_ELEMENT_S& element) {
    const Verdict verdict = Judge(element, word);
    level = std::max(level, verdict.level);
    return verdict.keep;
  });
  if (level == ESH_MATCH_PARTIAL) KeepOnly(*candidates, IsKeyword);
  if (level == ESH_MATCH_EXACT)  // what is left begins with the word
    KeepOnly(*candidates, [&](const ESH_CMD_ELEMENT_S& element) { return element.ulKeyLen == word.size(); });
  return level >= ESH_MATCH_PARAM && HoldsDifferentTexts(*candidates) ? std::uint32_t{ESH_MATCH_AMBIGUOUS} : level;
}

std::uint32_t ESH_GetCmdElementVec(const VEC_S* words, std::uint64_t count, std::uint32_t mode, VEC_S* candidates,
                                   std::uint64_t* errIndex) {
  std::uint32_t level = ESH_MATCH_PARAM;
  for (std::uint64_t i = 0; i < count; ++i) {
    ESH_SelectNextCmdElment(candidates);
    const char* word = WordAt(*words, i)->pcWord;
    if (mode == ESH_WORD_FINISHED || i + 1 < count) {
      level = ESH_FilterCmdElment(candidates, word);
    } else {
      KeepOnly(*candidates, [&](const ESH_CMD_ELEMENT_S& element) { return MayContinue(element, word); });
      if (VEC_GetCount(candidates) == 0) level = ESH_MATCH_NONE;
    }
    if (level < ESH_MATCH_PARAM) {
      *errIndex = i;
      return level;
    }
  }
  if (mode == ESH_WORD_FINISHED) ESH_SelectNextCmdElment(candidates);
  return level;
}
