#include "term/pager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "term/key_input.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kMore[] = "---- More ----     \033[19D\033[K";

/// A text that the pager may change, with nothing behind its end.
UniqueText Copy(const std::string& text) { return UniqueText(strdup(text.c_str())); }

/// The lines "1" to `count`, numbered on from `first`.
std::string Lines(int count, int first = 1) {
  std::string text;
  for (int line = first; line < first + count; ++line) text += std::to_string(line) + "\r\n";
  return text;
}

/// What pages of so many such lines look like, a More prompt between them.
std::string Pages(const std::vector<int>& pages) {
  std::string text;
  int line = 1;
  for (const int count : pages) {
    text += (line == 1 ? "" : kMore) + Lines(count, line);
    line += count;
  }
  return text;
}

const std::tuple<const char*, const char*, std::uint16_t, std::uint16_t, int, std::vector<int>> kPages[] = {
    {"Space shows a page, the prompt's row counted", "  left", 1, 1, 60, {24, 23, 13}},
    {"Enter shows one line", "\r\n  left", 1, 1, 60, {24, 1, 1, 23, 11}},
    {"a key that sends a sequence is one key", "\033[A", 1, 0, 60, {24, 0}},
    {"exactly a page", " left", 1, 1, 24, {24, 0}},
    {"exactly a page, declined", "xleft", 1, 0, 24, {24, 0}},
    {"paging not wanted", "left", 0, 1, 60, {60}},
};

/// Shows so many lines in texts of seven. @return the last answer.
std::uint16_t Show(int lines, std::uint16_t paging) {
  std::uint16_t answer = 1;
  for (int line = 1; line <= lines && answer == 1; line += 7)
    answer = ESH_LINE_DisplayString(Copy(Lines(std::min(7, lines - line + 1), line)).get(), paging);
  return answer;
}

TEST(Pager, StopsAtEveryFullPageOfTheWholeCommand) {
  for (const auto& [why, keys, paging, all_shown, lines, pages] : kPages) {
    ScriptedEditor editor(keys);
    g_stESh_Display = {24, 24, 0};
    EXPECT_EQ(Show(lines, paging), all_shown) << why;
    EXPECT_EQ(editor.TakeOutput(), Pages(pages)) << why;
    EXPECT_EQ(GetChar(1), keys[0] == '\033' ? -1 : 'l') << why << ": what is left";
  }
}

constexpr std::tuple<const char*, const char*, const char*> kLineEnds[] = {
    {"a line feed does not swallow another", "a\n\nb", "a\r\n\r\nb"},
    {"a carriage return swallows any byte", "a\rbc", "a\r\nc"},
    {"also another carriage return", "a\r\r\nb", "a\r\n\r\nb"},
    {"a carriage return at the very end", "a\r", "a\r\n"},
    {"text is no format", "%s%n\n", "%s%n\r\n"},
};

TEST(Pager, EndsEveryLineTheSameWay) {
  ScriptedEditor editor;
  g_stESh_Display = {24, 24, 0};
  for (const auto& [why, text, output] : kLineEnds) {
    EXPECT_EQ(ESH_OutString(Copy(text).get()), kSuccess) << why;
    EXPECT_EQ(editor.TakeOutput(), output) << why;
  }
}

}  // namespace
