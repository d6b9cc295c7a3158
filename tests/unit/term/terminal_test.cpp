#include "term/terminal.h"

#include <curses.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

#include "tests/support/scripted_stdio.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

struct CapabilityCase {
  const char* term;
  void (*write)();
  const char* output;
  const char* why;
};

constexpr CapabilityCase kCapabilities[] = {
    {"xterm", [] { ESH_TERM_CursorBack(3); }, "\033[3D", "the counted move once"},
    {"xterm", [] { ESH_TERM_CursorBack(0); }, "\033[0D", "the counted move also for 0"},
    {"xterm", [] { ESH_TERM_CursorUp(0xFFFF); }, "\033[65535A", "a large count"},
    {"esh-steps", [] { ESH_TERM_CursorBack(3); }, "\b\b\b", "single steps instead"},
    {"esh-steps", [] { ESH_TERM_CursorForward(2); }, "\033[C\033[C", "single steps instead"},
    {"esh-steps", [] { ESH_TERM_CursorUp(1); }, "\033[A", "single steps instead"},
    {"esh-steps", [] { ESH_TERM_CursorDown(2); }, "\033[B\033[B", "single steps instead"},
    {"esh-steps", [] { ESH_TERM_CursorDown(0); }, "", "no step is no output"},
    {"esh-still", [] { ESH_TERM_CursorBack(1000); }, "", "neither way of moving"},
    {"xterm", ESH_TERM_EraseScreen, "\033[H\033[2J", "clear"},
    {"esh-steps", ESH_TERM_EraseScreen, "\033[1;1H\033[J", "home and erase instead of clear"},
    {"esh-nowidth", ESH_TERM_EraseScreen, "", "no clear and no home: no erasing from wherever the cursor is"},
    {"xterm", ESH_TERM_EraseLine, "\033[1K\033[K", "both halves"},
    {"esh-nowidth", ESH_TERM_EraseLine, "\033[K", "the half that it can"},
    {"xterm", ESH_TERM_Erase2ScrEnd, "\033[J", "erase downwards"},
    {"vt100", ESH_TERM_Erase2ScrEnd, "\033[J", "no padding on the screen"},
    {"xterm", ESH_TERM_Bell, "\a", "bell"},
    {"esh-still", ESH_TERM_Bell, "", "no bell of our own"},
};

class TerminalTest : public testing::Test {
 protected:
  TerminalTest() { setenv("TERMINFO", ESH_TEST_TERMINFO, 1); }
  ~TerminalTest() override { ForgetTerminal(); }

  static void Use(const char* term) {
    ForgetTerminal();
    setenv("TERM", term, 1);
    SetUpTerminal();
  }
};

TEST_F(TerminalTest, WritesWhatTheTerminalCanDo) {
  ScriptedStdio stdio;
  for (const CapabilityCase& c : kCapabilities) {
    Use(c.term);
    c.write();
    EXPECT_EQ(stdio.TakeOutput(), c.output) << c.term << ": " << c.why;
  }
}

TEST_F(TerminalTest, NothingIsSeenBeforeTheFlush) {
  const ScriptedStdio stdio;
  Use("xterm");
  ESH_TERM_CursorBack(2);
  ESH_TERM_Bell();
  EXPECT_EQ(lseek(STDOUT_FILENO, 0, SEEK_END), 0);
  ESH_TERM_OFlush();
  EXPECT_EQ(lseek(STDOUT_FILENO, 0, SEEK_END), 5);
}

TEST_F(TerminalTest, AnUnknownSizeIsHuge) {
  use_env(FALSE);
  const ScriptedStdio stdio;
  Use("esh-nowidth");
  EXPECT_EQ(ESH_TERM_GetScrCols(), std::uint64_t{UINT32_MAX});
  EXPECT_EQ(ESH_TERM_GetScrLines(), std::uint64_t{UINT32_MAX});
  Use("esh-zerowidth");
  EXPECT_EQ(ESH_TERM_GetScrCols(), 0U);
  use_env(TRUE);
}

}  // namespace
