#include "term/line_editor.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "term/key_handlers.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

TEST(CommandLine, CountsThePagesOfEveryCommandAnew) {
  const ScriptedEditor editor("\n");
  g_stESh_Display = {24, 1, 17};
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
  for (const char* buffer : {g_stESh_Line.pcBuf, g_stESh_Line.pcLastBuf})
    EXPECT_EQ(std::count(buffer, buffer + kLineRoom, '\0'), kLineRoom);
}

TEST(DeleteText, TakesBothEndsInEitherOrder) {
  const ScriptedEditor editor("abcdefgh\n");
  (void)ESH_LINE_GetLine(ESH_LINE_MODE_PLAIN, 80);
  LINE_DeleteText(3, 1);
  LINE_DeleteText(2, 3);
  EXPECT_STREQ(g_stESh_Line.pcBuf, "aeh");
  EXPECT_EQ(g_stESh_Line.ulLen, 3U);
}

/// What is typed ahead of a tool is meant for the tool.
TEST(TypeAhead, StaysForTheNextReader) {
  ScriptedEditor editor("joe\rcat /etc/motd\n");
  EXPECT_STREQ(ESH_LINE_GetLine(ESH_LINE_MODE_PLAIN, 80), "joe");
  EXPECT_EQ(editor.TakeKeysLeft(), "cat /etc/motd\n");
}

}  // namespace
