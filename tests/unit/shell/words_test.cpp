#include "shell/words.h"

#include <gtest/gtest.h>

#include <string>

#include "util/vector.h"

namespace {

/// Each word as "text@start-end".
std::string Describe(const VEC_S& words) {
  std::string text;
  ForEachSlot<ESH_MARK_STR_S>(words, [&](std::uint64_t, const ESH_MARK_STR_S& word) {
    text += std::string(text.empty() ? "" : "|") + word.pcWord + "@" + std::to_string(word.ulStart) + "-" +
            std::to_string(word.ulEnd);
  });
  return text;
}

struct SplitCase {
  const char* line;
  const char* words;
};

TEST(Words, EndAtBlanksAndLineEndsOnly) {
  constexpr SplitCase kCases[] = {
      {"copy a b\n", "copy@0-3|a@5-5|b@7-7"},
      {"  copy  a\r\n", "copy@2-5|a@8-8"},
      {"a\rb\nc", "a@0-0|b@2-2|c@4-4"},
      {"a\tb c\n", "a\tb@0-2|c@4-4"},
      {"a\vb\fc\n", "a\vb\fc@0-4"},
      {"\t\v\f a \t b\n", "a@4-4|b@8-8"},
      {"dis?play ?\n", "dis?play@0-7|?@9-9"},
      {" \t\r\n", ""},
      {"", ""},
  };
  for (const SplitCase& c : kCases) {
    EXPECT_EQ(Describe(*SplitLine(c.line)), c.words) << c.line;
  }
}

TEST(Words, OfTheLongestLineAreKeptWhole) {
  for (const std::size_t length : {510U, 511U, 512U}) {
    const std::string word(length, 'w');
    EXPECT_STREQ(WordAt(*SplitLine(word + "\n"), 0)->pcWord, word.c_str());
  }
  std::string line;
  for (int i = 0; i < 256; ++i) {
    line += "x ";
  }
  const UniqueWords words = SplitLine(line);
  EXPECT_EQ(VEC_GetCount(words.get()), 256U);
  EXPECT_EQ(WordAt(*words, 255)->ulStart, 510U);
  EXPECT_EQ(WordAt(*words, 256), nullptr);
}

TEST(Words, LoseTheKeyThatEndedTheLine) {
  constexpr SplitCase kCases[] = {
      {"dis?", "dis@0-2"}, {"copy dis\t", "copy@0-3|dis@5-7"}, {"copy ?", "copy@0-3"}, {"copy \t", "copy@0-3"},
      {"?", ""},           {"copy a", "copy@0-3|a@5-5"},       {"a?\t", "a?@0-1"},     {"a? b", "a?@0-1|b@3-3"},
  };
  for (const SplitCase& c : kCases) {
    const UniqueWords words = SplitLine(c.line);
    CutEndKey(*words);
    EXPECT_EQ(Describe(*words), c.words) << c.line;
  }
}

}  // namespace
