#include "tests/unit/term/scripted_editor.h"

#include <curses.h>
// curses.h first: term.h needs its types.
#include <gtest/gtest.h>
#include <term.h>

#include <cstdlib>

#include "term/line_editor.h"

ScriptedEditor::ScriptedEditor(std::string_view keys) : stdio_(keys) {
  setenv("TERM", "xterm", 1);
  EXPECT_EQ(ESH_LINE_Init(), 0U);
}

ScriptedEditor::~ScriptedEditor() {
  ESH_LINE_Exit();
  ForgetTerminal();
}

void ForgetTerminal() { del_curterm(cur_term); }
