#include "term/line_editor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "term/history.h"
#include "term/key_handlers.h"
#include "term/line_state.h"
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
  const ScriptedEditor editor;
  ESH_SetPrompt("0123456789012345678901234567890123456789");
  EXPECT_STREQ(ESH_GetPrompt(), "0123456789012345678901234567890");
  EXPECT_EQ(g_stESh_Line.ulPromptLen, 31U);
}

TEST(Password, IsNotFoundInMemoryAfterwards) {
  const ScriptedEditor editor("secret\n");
  (void)ESH_LINE_GetLine(ESH_LINE_MODE_MASKED, 15);
  ForgetLine();
  for (const char* buffer : {g_stESh_Line.pcBuf, g_stESh_Line.pcLastBuf}) {
    EXPECT_EQ(std::count(buffer, buffer + kLineRoom, '\0'), kLineRoom);
  }
}

TEST(DeleteText, TakesBothEndsInEitherOrder) {
  const ScriptedEditor editor;
  struct DeletionCase {
    std::uint64_t a;
    std::uint64_t b;
    std::string left;
  };
  const DeletionCase kDeletions[] = {{5, 5, "abcde"}, {1, 3, "aef"}, {3, 1, "aef"}, {0, 5, ""}};
  for (const DeletionCase& c : kDeletions) {
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, "abcdef");
    g_stESh_Line.ulLen = 6;
    EXPECT_EQ(LINE_DeleteText(c.a, c.b), 1);
    EXPECT_EQ(g_stESh_Line.pcBuf, c.left);
    EXPECT_EQ(g_stESh_Line.ulLen, c.left.size());
  }
}

/// What is typed ahead of a tool is meant for the tool.
TEST(TypeAhead, StaysForTheNextReader) {
  ScriptedEditor editor("joe\rcat /etc/motd\n");
  EXPECT_STREQ(ESH_LINE_GetLine(ESH_LINE_MODE_PLAIN, 80), "joe");
  EXPECT_EQ(editor.TakeKeysLeft(), "cat /etc/motd\n");
}

}  // namespace
