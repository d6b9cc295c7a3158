#include "term/terminal.h"

#include <curses.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

#include "tests/support/scripted_stdio.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

struct TerminalTest : testing::Test {
  TerminalTest() { setenv("TERMINFO", ESH_TEST_TERMINFO, 1); }
  ~TerminalTest() override { ForgetTerminal(); }

  static void Use(const char* term) {
    ForgetTerminal();
    setenv("TERM", term, 1);
    SetUpTerminal();
  }

  ScriptedStdio stdio;
};

constexpr struct {
  const char* why;
  const char* term;
  void (*write)();
  const char* output;
} kCapabilities[] = {
    {"the counted move once", "xterm", [] { ESH_TERM_CursorBack(3); }, "\033[3D"},
    {"the counted move also for 0", "xterm", [] { ESH_TERM_CursorForward(0); }, "\033[0C"},
    {"single steps instead", "esh-steps", [] { ESH_TERM_CursorBack(3); }, "\b\b\b"},
    {"neither way of moving", "esh-still", [] { ESH_TERM_CursorBack(1000); }, ""},
    {"home and erase instead of clear", "esh-steps", ESH_TERM_EraseScreen, "\033[1;1H\033[J"},
    {"no home: no erasing from wherever the cursor is", "esh-nowidth", ESH_TERM_EraseScreen, ""},
    {"both halves of a line", "xterm", ESH_TERM_EraseLine, "\033[1K\033[K"},
    {"no padding on the screen", "vt100", ESH_TERM_Erase2ScrEnd, "\033[J"},
    {"no bell of our own", "esh-still", ESH_TERM_Bell, ""},
};

TEST_F(TerminalTest, WritesWhatTheTerminalCanDo) {
  for (const auto& c : kCapabilities) {
    Use(c.term);
    c.write();
    EXPECT_EQ(stdio.TakeOutput(), c.output) << c.why;
  }
}

TEST_F(TerminalTest, AnUnknownSizeIsHuge) {
  use_env(FALSE);
  Use("esh-nowidth");
  EXPECT_EQ(ESH_TERM_GetScrCols(), std::uint64_t{UINT32_MAX});
  EXPECT_EQ(ESH_TERM_GetScrLines(), std::uint64_t{UINT32_MAX});
  Use("esh-zerowidth");
  EXPECT_EQ(ESH_TERM_GetScrCols(), 0U);
  use_env(TRUE);
}

}  // namespace
