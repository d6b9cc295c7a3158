#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

struct VEC_S;

inline constexpr std::size_t kWordRoom = 513;

/// Whether a line holds nothing but white space.
[[nodiscard]] bool IsBlankLine(std::string_view line);

/// One word of an input line. Record and buffer are from malloc.
struct ESH_MARK_STR_S {
  char* pcWord;           ///< the word, in a buffer of kWordRoom bytes that the record owns
  std::uint64_t ulStart;  ///< index in the line of its first character
  std::uint64_t ulEnd;    ///< index in the line of its last character
};

/// Frees one word with its buffer. NULL is allowed.
void FreeMarkStr(ESH_MARK_STR_S* word);

/// Frees all words and the vector. NULL is allowed.
void ESH_FreeMarkStrVec(VEC_S* words);

struct WordsFreer {
  void operator()(VEC_S* words) const { ESH_FreeMarkStrVec(words); }
};
/// Owns the words of a line.
using UniqueWords = std::unique_ptr<VEC_S, WordsFreer>;

/// Splits a line at white space. A tab or "?" inside a word belongs to it.
/// @return the words in line order (none for a blank line), or NULL when memory is short.
[[nodiscard]] UniqueWords SplitLine(std::string_view line);

/// The word at an index, or NULL when there are fewer.
[[nodiscard]] ESH_MARK_STR_S* WordAt(const VEC_S& words, std::uint64_t index);

/// Takes a key that ended the line ("?" or TAB) off the last word, if it ends in one; a word that is then empty is
/// removed.
/// @param words of a line that is not blank.
void CutEndKey(VEC_S& words);
