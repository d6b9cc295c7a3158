#include "shell/parser.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "shell/command/view.h"
#include "term/help/completion.h"
#include "term/help/help_list.h"
#include "term/line_state.h"
#include "tests/support/test_view.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/fixed_text.h"

namespace {

/// Offers the word that it was asked to continue.
std::uint32_t ListTheWord(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* /*element*/) {
  return ESH_NewHelpInfo((std::string(word) + "...").c_str(), "A name", list);
}

struct Parser : testing::Test {
  Parser() {
    g_pstEshUserView = g_pstEshCurrentView;
    ESH_ResetTabState();
    ESH_SetCmdMode(g_pstEshUserView);
    view.Add("two STRING<1-511> <cr>", ListTheWord);
  }

  /// @return what appears on the console.
  std::string Parse(const std::string& line) {
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, line);
    ESH_CmdParser(g_stESh_Line.pcBuf);
    return editor.TakeOutput();
  }

  ScriptedEditor editor;
  TestView view{"<boot>",
                {"one <cr>", "twin <cr>", "half", "set INTEGER<10-31> <cr>", "set X.X.X.X <cr>", "show X:X::X:X <cr>",
                 "show X:X::X:X/M <cr>", "show STRING<1-3> <cr>"}};
};

constexpr std::tuple<const char*, const char*, const char*, const char*> kLines[] = {
    {"t\t", "\r\n<boot>", "", "tw"},
    {"tw\t", "\r\n<boot>", "", "twin"},
    {"one\n", "\r\n", "one <cr>\n", ""},  // it ends a completion
    {"tw\t", "\r\n<boot>", "", "twin"},
    {"tw?", "\r\n  twin\r\n  two\r\n\r\n<boot>", "", "tw"},  // as help does
    {"tw\t", "\r\n<boot>", "", "twin"},
    {"TWO ?", "\r\n  ?...  A name\r\n\r\n<boot>", "", "TWO "},
    {"one ?x ?\n", "\r\n  <cr>  \r\n\r\n<boot>", "", "one "},
    {"half\n", "\r\n      ^\r\n % Unrecognized command found at '^' position.\r\n", "", ""},  // it has no end
    {"set 31?", "\r\n  INTEGER<10-31>\r\n  X.X.X.X\r\n\r\n<boot>", "", "set 31"},
    {"set 1.2.?", "\r\n  X.X.X.X\r\n\r\n<boot>", "", "set 1.2."},
    {"show fe8F::1.2?", "\r\n  STRING<1-3>\r\n  X:X::X:X\r\n  X:X::X:X/M\r\n\r\n<boot>", "", "show fe8F::1.2"},
    {"show fe80::/6?", "\r\n  STRING<1-3>\r\n  X:X::X:X/M\r\n\r\n<boot>", "", "show fe80::/6"},
    {"  o\t", "\r\n<boot>", "", "one "},  // nothing is left of the longer line
    {"show \x7f?", "\r\n           ^\r\n % Unrecognized command found at '^' position.\r\n<boot>", "", "show \x7f"},
    {"set 9 ?", "\r\n          ^\r\n % Wrong parameter found at '^' position.\r\n<boot>", "", "set 9 "},
    {"  \t", "\r\n", "", "  \t"},  // no blank line is handed back
    {"\t\v\f \r\n", "\r\n", "", "\t\v\f \r\n"},
    {"one x?", "\r\n          ^\r\n % Unrecognized command found at '^' position.\r\n<boot>", "", "one x"},
};

TEST_F(Parser, ActsOnTheKeyThatEndedTheLine) {
  for (const auto& [line, output, ran, left_in_buffer] : kLines) {
    ASSERT_EQ(Parse(line), output) << line;  // what is said of a failure would stand in all later outputs
    EXPECT_EQ(TestView::TakeRan(), ran) << line;
    EXPECT_STREQ(g_stESh_Line.pcBuf, left_in_buffer) << line;
  }
}

}  // namespace
