#pragma once

#include <cstdint>

struct VEC_S;

/// How well a word fits. Those below ESH_MATCH_PARAM are also the errors that a line can have.
enum ESH_MATCH_LEVEL_E : std::uint32_t {
  ESH_MATCH_NONE = 0,         ///< no candidate accepts the word
  ESH_MATCH_TOO_MANY = 1,     ///< only the end of the command could be here
  ESH_MATCH_WRONG_PARAM = 2,  ///< a parameter could be here, but the word is no valid value
  ESH_MATCH_INCOMPLETE = 3,   ///< the line stops before the end of a command (set by the executor only)
  ESH_MATCH_AMBIGUOUS = 4,    ///< candidates with different texts remain
  ESH_MATCH_PARAM = 5,        ///< a parameter accepts the word
  ESH_MATCH_PARTIAL = 6,      ///< a keyword begins with the word
  ESH_MATCH_EXACT = 7,        ///< a keyword equals the word, ignoring case
};

/// Candidates are kept in a vector of pointers to command elements, which belong to their commands.

/// Advances the candidates by one word position: an empty vector gets the first element of every command of the
/// current view, any other the successors of its elements. When memory is short no candidate is left.
/// The name is "Elment".
void ESH_SelectNextCmdElment(VEC_S* candidates);

/// Matches one complete word, removing the candidates that fail. @return the level reached. The name is "Elment".
[[nodiscard]] std::uint32_t ESH_FilterCmdElment(VEC_S* candidates, const char* typed);

/// Keeps only the candidates that end a command.
void KeepCommandEnds(VEC_S& candidates);

/// Whether the last word of the line is finished (a blank follows it) or still being typed.
enum ESH_WORD_MODE_E : std::uint32_t { ESH_WORD_PARTIAL = 0, ESH_WORD_FINISHED = 1 };

/// Gives the candidates for the position under the cursor, for help and completion.
/// @param words    the words of the line (shell/command/words.h).
/// @param count    how many they are.
/// @param mode     ESH_WORD_FINISHED: what may follow the last word; ESH_WORD_PARTIAL: what may continue it.
/// @param candidates empty at the call; holds the elements that fit afterwards.
/// @param errIndex set to the index of the failing word when the result is below ESH_MATCH_PARAM.
/// @return a match level.
[[nodiscard]] std::uint32_t ESH_GetCmdElementVec(const VEC_S* words, std::uint64_t count, std::uint32_t mode,
                                                 VEC_S* candidates, std::uint64_t* errIndex);
