#include "tests/unit/term/scripted_editor.h"

#include <curses.h>
// curses.h first: term.h needs its types.
#include <gtest/gtest.h>
#include <term.h>

#include <cstdlib>
#include <string>

#include "term/history.h"
#include "term/line_editor.h"

ScriptedEditor::ScriptedEditor(std::string_view keys, const char* term, unsigned width) : ScriptedStdio(keys) {
  setenv("TERMINFO", ESH_TEST_TERMINFO, 1);
  setenv("TERM", term, 1);
  setenv("COLUMNS", std::to_string(width).c_str(), 1);
  use_env(width == 0 ? FALSE : TRUE);  // or the library makes up a width where the terminal gives none
  ESH_HIS_Init();
  EXPECT_EQ(ESH_LINE_Init(), 0U);
}

ScriptedEditor::~ScriptedEditor() {
  ESH_LINE_Exit();
  for (ESH_HIS_LINK_S* link = g_stEShHisRec.pstNext; link != &g_stEShHisRec;) {
    auto* node = static_cast<ESH_HIS_NODE_S*>(link);
    link = link->pstNext;
    std::free(node->pcCmd);
    delete node;
  }
  del_curterm(cur_term);
}
