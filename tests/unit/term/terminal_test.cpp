#include "term/terminal.h"

#include <gtest/gtest.h>

#include "tests/unit/term/scripted_editor.h"

namespace {

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
    {"no padding on the screen", "vt100", ESH_TERM_Erase2ScrEnd, "\033[J"},
    {"no bell of our own", "esh-still", ESH_TERM_Bell, ""},
};

TEST(Terminal, WritesWhatItCanDo) {
  for (const auto& c : kCapabilities) {
    ScriptedEditor editor({}, c.term);
    c.write();
    EXPECT_EQ(editor.TakeOutput(), c.output) << c.why;
  }
}

}  // namespace
