#include "shell/command/words.h"

#include <gtest/gtest.h>

#include <string>

#include "util/vector.h"

namespace {

/// Each word as "text@start-end".
std::string Describe(const VEC_S& words) {
  std::string text;
  ForEachSlot<ESH_MARK_STR_S>(words, [&](std::uint64_t, const ESH_MARK_STR_S& word) {
    text += (text.empty() ? "" : "|") + std::string(word.pcWord) + "@" + std::to_string(word.ulStart) + "-" +
            std::to_string(word.ulEnd);
  });
  return text;
}

constexpr struct {
  const char* line;
  const char* words;
} kLines[] = {
    {"  copy  a\r\n", "copy@2-5|a@8-8"},
    {"a\rb\nc", "a@0-0|b@2-2|c@4-4"},
    {"a\tb\vc\fd e\n", "a\tb\vc\fd@0-6|e@8-8"},
    {"\t\v\f a \t b\n", "a@4-4|b@8-8"},
    {"a? dis?play ?\n", "a?@0-1|dis?play@3-10"},
    {"copy dis?", "copy@0-3|dis@5-7"},
    {"?", ""},
    {" \t\r\n", ""},
};

TEST(Words, EndAtBlanksAndLoseTheKeyThatEndedTheLine) {
  for (const auto& c : kLines) {
    const UniqueWords words = SplitLine(c.line);
    CutEndKey(*words);
    EXPECT_EQ(Describe(*words), c.words) << c.line;
  }
}

TEST(Words, OfTheLongestLineAreKeptWhole) {
  const std::string word(512, 'w');
  EXPECT_STREQ(WordAt(*SplitLine(word + "\n"), 0)->pcWord, word.c_str());
}

}  // namespace
