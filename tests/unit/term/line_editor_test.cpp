#include "term/line_editor.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "term/history.h"
#include "term/key_handlers.h"
#include "term/line_state.h"
#include "tests/support/console.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/fixed_text.h"

namespace {

TEST(CommandLine, CountsThePagesOfEveryCommandAnew) {
  const ScriptedEditor editor("\n");
  g_stESh_Display = {24, 1, 17};
  ESH_HIS_Init();
  (void)ESH_LINE_GetCmdLine();
  EXPECT_EQ(g_stESh_Display.ulMoreLines, 24U);
  EXPECT_EQ(g_stESh_Display.ulCurLines, 0U);
}

TEST(Prompt, IsCutWhenItIsTooLong) {
  ScriptedEditor editor;
  ESH_SetPrompt("0123456789012345678901234567890123456789");
  EXPECT_STREQ(ESH_GetPrompt(), "0123456789012345678901234567890");
  EXPECT_EQ(g_stESh_Line.ulPromptLen, 31U);
  ESH_SetPrompt("");
  EXPECT_STREQ(ESH_GetPrompt(), "");
  EXPECT_EQ(g_stESh_Line.ulPromptLen, 0U);
  EXPECT_EQ(editor.TakeOutput(), "");
}

TEST(DeleteText, TakesBothEndsInEitherOrder) {
  ScriptedEditor editor;
  struct DeletionCase {
    std::uint64_t a;
    std::uint64_t b;
    const char* left;
  };
  constexpr DeletionCase kDeletions[] = {{0, 0, "bcdef"}, {5, 5, "abcde"}, {1, 3, "aef"}, {3, 1, "aef"}, {0, 5, ""}};
  for (const DeletionCase& c : kDeletions) {
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, "abcdef");
    g_stESh_Line.ulLen = 6;
    EXPECT_EQ(LINE_DeleteText(c.a, c.b), 1);
    EXPECT_STREQ(g_stESh_Line.pcBuf, c.left);
    EXPECT_EQ(g_stESh_Line.ulLen, std::strlen(c.left));
  }
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

}  // namespace
