#include "shell/command/words.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "util/fixed_text.h"
#include "util/vector.h"

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";
constexpr std::string_view kWordEnd = std::string_view(" \r\n\0", 4);

struct WordFreer {
  void operator()(ESH_MARK_STR_S* word) const { FreeMarkStr(word); }
};
using UniqueWord = std::unique_ptr<ESH_MARK_STR_S, WordFreer>;

/// Makes the record of the word that stands at `start`; NULL when memory is short.
UniqueWord MakeWord(std::string_view text, std::uint64_t start) {
  UniqueWord word(static_cast<ESH_MARK_STR_S*>(std::calloc(1, sizeof(ESH_MARK_STR_S))));
  if (word == nullptr) return nullptr;
  word->pcWord = static_cast<char*>(std::malloc(kWordRoom));
  if (word->pcWord == nullptr) return nullptr;
  CopyBounded(word->pcWord, kWordRoom, text);
  word->ulStart = start;
  word->ulEnd = start + text.size() - 1;
  return word;
}

bool AppendWord(VEC_S& words, std::string_view text, std::uint64_t start) {
  UniqueWord word = MakeWord(text, start);
  if (word == nullptr || VEC_Add(&words, kNoIndex, word.get()) == kNoIndex) return false;
  (void)word.release();  // the vector's now
  return true;
}

}  // namespace

bool IsBlankLine(std::string_view line) { return line.find_first_not_of(kWhiteSpace) == std::string_view::npos; }

void FreeMarkStr(ESH_MARK_STR_S* word) {
  if (word != nullptr) {
    std::free(word->pcWord);
    std::free(word);
  }
}

void ESH_FreeMarkStrVec(VEC_S* words) { FreeVectorOf<ESH_MARK_STR_S>(words, FreeMarkStr); }

UniqueWords SplitLine(std::string_view line) {
  UniqueWords words(VEC_Alloc(kUsualSlots));
  std::size_t start = line.find_first_not_of(kWhiteSpace);
  while (words != nullptr && start != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kWordEnd, start), line.size());
    if (!AppendWord(*words, line.substr(start, end - start), start)) return nullptr;
    start = line.find_first_not_of(kWhiteSpace, end);
  }
  return words;
}

ESH_MARK_STR_S* WordAt(const VEC_S& words, std::uint64_t index) {
  return index < words.ulCapacity && index <= words.ulMaxIndex ? static_cast<ESH_MARK_STR_S*>(words.ppvArray[index])
                                                               : nullptr;
}

void CutEndKey(VEC_S& words) {
  ESH_MARK_STR_S* word = WordAt(words, words.ulMaxIndex);
  char& key = word->pcWord[std::strlen(word->pcWord) - 1];
  if (key != '?' && key != '\t') return;
  key = '\0';
  --word->ulEnd;
  if (word->pcWord[0] != '\0') return;
  VEC_Del(&words, words.ulMaxIndex);
  FreeMarkStr(word);
}
