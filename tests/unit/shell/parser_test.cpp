#include "shell/parser.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "shell/view.h"
#include "term/completion.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/support/test_view.h"
#include "util/fixed_text.h"

namespace {

struct Parser : testing::Test {
  TestView view{"<boot>"};

  Parser() {
    setenv("TERM", "vt100", 1);
    EXPECT_EQ(ESH_LINE_Init(), 0U);
    g_pstEshUserView = g_pstEshCurrentView;
    ESH_SetCmdMode(g_pstEshUserView);
    view.AddAll({"one <cr>", "two STRING<1-511> <cr>", "twin <cr>"});
  }
  ~Parser() override { ESH_LINE_Exit(); }

  /// @return what appears on the console.
  static std::string Parse(const std::string& line) {
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, line);
    testing::internal::CaptureStdout();
    ESH_CmdParser(g_stESh_Line.pcBuf);
    return testing::internal::GetCapturedStdout();
  }
};

struct ParseCase {
  const char* line;
  const char* output;
  const char* ran;
  const char* left;  // in the edit buffer
};

TEST_F(Parser, ActsOnTheKeyThatEndedTheLine) {
  constexpr char kList[] = "  one   What it is\r\n  twin  What it is\r\n  two   What it is\r\n\r\n";
  const std::string all = std::string("\r\nUser view commands:\r\n") + kList + "<boot>";
  const ParseCase cases[] = {
      {"one\n", "\r\n", "one <cr>\n", ""},
      {" o \r", "\r\n", "one <cr>\n", ""},
      {"o\t", "\r\n<boot>", "", "one "},
      {"  o\t", "\r\n<boot>", "", "one "},
      {"two x\t", "\r\n<boot>", "", "two x"},
      {"?", all.c_str(), "", ""},
      {"?one\n", all.c_str(), "", ""},
      {"tw?", "\r\n  twin\r\n  two\r\n\r\n<boot>", "", "tw"},
      {"one ?", "\r\n  <cr>  \r\n\r\n<boot>", "", "one "},
      {"one ?x ?\n", "\r\n  <cr>  \r\n\r\n<boot>", "", "one "},
      {"x?", "\r\n      ^\r\n % Unrecognized command found at '^' position.\r\n<boot>", "", "x"},
      {"x\n", "\r\n      ^\r\n % Unrecognized command found at '^' position.\r\n", "", ""},
  };
  for (const ParseCase& c : cases) {
    EXPECT_EQ(Parse(c.line), c.output) << c.line;
    EXPECT_EQ(TestView::TakeRan(), c.ran) << c.line;
    EXPECT_STREQ(g_stESh_Line.pcBuf, c.left) << c.line;
  }
}

TEST_F(Parser, AnswersABlankLineWithALineBreakOnly) {
  for (const char* line : {"\n", "   \n", "\t", "  \t", "\t\v\f \r\n"}) {
    EXPECT_EQ(Parse(line), "\r\n") << line;
    EXPECT_EQ(g_stESh_Line.usKeepBuf, 0) << "no line is handed back";
  }
}

TEST_F(Parser, EnterAndHelpEndACompletion) {
  for (const char* line : {"one\n", "t?"}) {
    (void)Parse("t\t");
    ASSERT_STRNE(g_stTabState.szPrefix, "");
    (void)Parse(line);
    EXPECT_STREQ(g_stTabState.szPrefix, "") << line;
  }
}

}  // namespace
