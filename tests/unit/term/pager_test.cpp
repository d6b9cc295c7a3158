#include "term/pager.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "shell/result.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

#define MORE            \
  "---- More ----     " \
  "\033[19D\033[K"

/// A text that the pager may change, with nothing behind its end.
UniqueText Copy(const std::string& text) { return UniqueText(strdup(text.c_str())); }

/// The lines "1" to `count`, numbered on from `first`.
std::string Lines(int count, int first = 1) {
  std::string text;
  for (int line = first; line < first + count; ++line) {
    text += std::to_string(line) + "\r\n";
  }
  return text;
}

/// What pages of such lines look like: "24M1" is 24 lines, a More prompt and one more line.
std::string Pages(const char* pages) {
  std::string text;
  int line = 1;
  for (char* next = nullptr; *pages != '\0'; pages = next) {
    const int count = static_cast<int>(std::strtol(pages, &next, 10));
    text += Lines(count, line);
    line += count;
    if (*next == 'M') {
      text += MORE;
      ++next;
    }
  }
  return text;
}

class PagerTest : public testing::Test {
 protected:
  static void StartCommand(std::uint32_t page) { g_stESh_Display = {page, page, 0}; }
};

struct PageCase {
  const char* keys;
  const char* pages;
  const char* why;
  int lines;
  std::uint16_t all_shown;
};

constexpr PageCase kPages[] = {
    {"  ", "24M23M13", "Space shows a page, the prompt's row counted", 60, 1},
    {"\r\n  ", "24M1M1M23M11", "Enter shows one line", 60, 1},
    {"q", "24M", "any other key stops", 60, 0},
    {" \003", "24M23M", "any other key stops, on any page", 60, 0},
    {"\033[A", "24M", "a key that sends a sequence is one key", 60, 0},
    {"", "23", "less than a page", 23, 1},
    {" ", "24M", "exactly a page", 24, 1},
    {"x", "24M", "exactly a page, declined", 24, 0},
    {"\n ", "24M1M", "one line more, and it fills its page", 25, 1},
    {"  ", "24M23M", "exactly two pages", 47, 1},
};

TEST_F(PagerTest, StopsAtEveryFullPage) {
  for (const PageCase& c : kPages) {
    ScriptedEditor editor(std::string(c.keys) + (c.keys[0] == '\033' ? "" : "left"));
    StartCommand(24);
    EXPECT_EQ(ESH_LINE_DisplayString(Copy(Lines(c.lines)).get(), 1), c.all_shown) << c.why;
    EXPECT_EQ(editor.TakeOutput(), Pages(c.pages)) << c.why;
    EXPECT_EQ(editor.TakeKeysLeft(), c.keys[0] == '\033' ? "" : "left") << c.why;
  }
}

TEST_F(PagerTest, CountsOverAllTheTextsOfACommand) {
  ScriptedEditor editor(" q");
  StartCommand(24);
  EXPECT_EQ(ESH_OutString(Copy(Lines(20)).get()), kSuccess);
  EXPECT_EQ(editor.TakeOutput(), Pages("20"));
  EXPECT_EQ(ESH_OutString(Copy(Lines(20, 21)).get()), kSuccess);
  EXPECT_EQ(ESH_OutString(Copy(Lines(20, 41)).get()), ESH_ERR_FAIL);
  EXPECT_EQ(Pages("20") + editor.TakeOutput(), Pages("24M23M"));
}

TEST_F(PagerTest, DoesNotStopUnlessAsked) {
  ScriptedEditor editor;
  StartCommand(24);
  EXPECT_EQ(ESH_LINE_DisplayString(Copy(Lines(60)).get(), 0), 1);
  EXPECT_EQ(editor.TakeOutput(), Pages("60")) << "paging not wanted";
  EXPECT_EQ(g_stESh_Display.ulCurLines, 0U) << "paging not wanted";
  StartCommand(0);
  EXPECT_EQ(ESH_LINE_DisplayString(Copy(Lines(60)).get(), 1), 1);
  EXPECT_EQ(editor.TakeOutput(), Pages("60")) << "paging switched off";
}

struct LineEndCase {
  const char* text;
  const char* output;
  const char* why;
};

constexpr LineEndCase kLineEnds[] = {
    {"a\r\nb\r\n", "a\r\nb\r\n", "both"},
    {"a\nb\n", "a\r\nb\r\n", "line feeds"},
    {"a\n\rb\n\r", "a\r\nb\r\n", "the other way round"},
    {"a\n\nb", "a\r\n\r\nb", "a line feed does not swallow another"},
    {"a\rbc", "a\r\nc", "a carriage return swallows any byte"},
    {"a\r\r\nb", "a\r\n\r\nb", "also another carriage return"},
    {"a\r", "a\r\n", "a carriage return at the very end"},
    {"a\r\n\r", "a\r\n\r\n", "a carriage return at the very end of an empty line"},
    {"abc", "abc", "no line end is made up"},
    {"\n", "\r\n", "an empty line"},
    {"", "", "nothing"},
    {"%s%n\n", "%s%n\r\n", "text is no format"},
};

TEST_F(PagerTest, EndsEveryLineTheSameWay) {
  ScriptedEditor editor;
  StartCommand(24);
  for (const LineEndCase& c : kLineEnds) {
    EXPECT_EQ(ESH_OutString(Copy(c.text).get()), kSuccess) << c.why;
    EXPECT_EQ(editor.TakeOutput(), c.output) << c.why;
  }
}

TEST_F(PagerTest, BeginsBelowTheWholeInputLine) {
  ScriptedEditor editor;
  StartCommand(24);
  CopyBounded(g_stESh_Line.pcBuf, kLineRoom, "display");
  g_stESh_Line.ulLen = 7;
  g_stESh_Line.ulCursor = 3;
  ESH_OutString(Copy("a").get());
  EXPECT_EQ(editor.TakeOutput(), "\033[4Ca");
  EXPECT_EQ(g_stESh_Line.ulCursor, 7U);
  EXPECT_EQ(g_stESh_Line.ulLastCursor, 7U);
  EXPECT_EQ(g_stESh_Line.ulLastLen, 7U);
}

}  // namespace
