#include "term/line_editor.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "term/history.h"
#include "term/line_state.h"
#include "tests/support/console.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

/// The editor with keys that were typed ahead of it.
class LineEditorTest : public testing::Test {
 protected:
  LineEditorTest() { ESH_HIS_Init(); }  // the lines read here are remarks, which are not remembered

  /// Reads one command line.
  static std::string Read(std::string_view keys) {
    const ScriptedEditor editor(keys);
    return ESH_LINE_GetCmdLine();
  }
};

struct LineCase {
  std::string_view keys;
  const char* line;
  std::uint32_t end_key;
  const char* why;
};

constexpr LineCase kLines[] = {
    {"\r", "\n", ESH_LINE_END_ENTER, "nothing typed"},
    {"#a\002b\n", "#ba\n", ESH_LINE_END_ENTER, "Enter in the middle takes the whole line"},
    {"#display version\001\006\006\006\006\006\006\006\006\t", "#display\t", ESH_LINE_END_TAB,
     "TAB cuts at the cursor"},
    {"ab\001\t", "\t", ESH_LINE_END_TAB, "TAB at the start"},
    {"display \002?", "display? ", ESH_LINE_END_HELP, "help in the middle keeps the rest"},
    {"abc\032", "\032", ESH_LINE_END_CTRL_Z, "Ctrl+Z stands alone"},
    {"#ab\003c\n", "#abc\n", ESH_LINE_END_ENTER, "Ctrl+C does nothing on a command line"},
};

TEST_F(LineEditorTest, GivesTheLineByTheKeyThatEndedIt) {
  for (const LineCase& c : kLines) {
    EXPECT_EQ(Read(c.keys), c.line) << c.why;
    EXPECT_EQ(g_stESh_Line.ulEndKey, c.end_key) << c.why;
  }
}

TEST_F(LineEditorTest, CountsThePagesOfEveryCommandAnew) {
  g_stESh_Display = {24, 1, 17};
  Read("\n");
  EXPECT_EQ(g_stESh_Display.ulMoreLines, 24U);
  EXPECT_EQ(g_stESh_Display.ulCurLines, 0U);
}

TEST_F(LineEditorTest, CutsAPromptThatIsTooLong) {
  ScriptedEditor editor;
  ESH_SetPrompt("0123456789012345678901234567890123456789");
  EXPECT_STREQ(ESH_GetPrompt(), "0123456789012345678901234567890");
  EXPECT_EQ(g_stESh_Line.ulPromptLen, 31U);
  ESH_SetPrompt("");
  EXPECT_STREQ(ESH_GetPrompt(), "");
  EXPECT_EQ(g_stESh_Line.ulPromptLen, 0U);
  EXPECT_EQ(editor.TakeOutput(), "");
}

/// What is typed ahead of a tool is meant for the tool.
TEST(TypeAhead, StaysForTheNextReader) {
  const Console console({}, [](const Console::Report& report) {
    (void)ESH_LINE_Init();
    report("ready");
    report(ESH_LINE_GetLine(ESH_LINE_MODE_PLAIN, 80));
    char rest[100];
    const ssize_t count = read(STDIN_FILENO, rest, sizeof(rest));
    report({rest, static_cast<std::size_t>(count)});
  });
  EXPECT_EQ(console.NextReport(), "ready");
  console.Type("joe\rcat /etc/motd\n");
  EXPECT_EQ(console.NextReport(), "joe");
  EXPECT_EQ(console.NextReport(), "cat /etc/motd\n");
}

TEST(UnknownTerminal, IsReportedInOneLineAndCanBeTypedOn) {
  for (const char* term : {"no-such-terminal", "", static_cast<const char*>(nullptr)}) {
    const Console console({.term = term}, [](const Console::Report& report) {
      (void)ESH_LINE_Init();
      ESH_SetPrompt("<boot>");
      report(ESH_LINE_GetLine(ESH_LINE_MODE_PLAIN, 80));
    });
    const std::string output = console.ReadUntil("<boot>");
    EXPECT_NE(output.find(term == nullptr ? "\"\"" : term), std::string::npos) << output;
    EXPECT_EQ(output.find('\n'), output.size() - std::string_view("\n<boot>").size()) << output;
    console.Type("ab\010c\n");
    EXPECT_EQ(console.NextReport(), "ac");
  }
}

}  // namespace
