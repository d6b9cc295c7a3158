#include "term/key_input.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <tuple>

#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/support/scripted_stdio.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/fixed_text.h"

namespace {

/// A console that hung up answers every read at once, and the shell must not spin until it is back.
TEST(GetChar, EveryKindOfNothingIsOneTryOfATenthOfASecond) {
  const ScriptedStdio stdio({"\0\0a", 3});
  EXPECT_EQ(GetChar(2), -1);
  EXPECT_EQ(GetChar(1), 'a') << "NUL bytes";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(GetChar(1), -1) << "the end of the input";
  close(STDIN_FILENO);
  EXPECT_EQ(GetChar(2), -1) << "errors";
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(290));
}

constexpr std::tuple<const char*, ESH_LINE_MODE_E, const char*, std::uint32_t, int, const char*> kRedraws[] = {
    {"the cursor inside", ESH_LINE_MODE_COMMAND, "display", 3, 0, "\r\n<boot>display\033[4D"},
    {"one character", ESH_LINE_MODE_COMMAND, "d", 1, 0, "\r\n<boot>d"},
    {"nothing typed, nothing to draw", ESH_LINE_MODE_COMMAND, "", 0, 0, ""},
    {"a password", ESH_LINE_MODE_MASKED, "joe", 1, 0, "\r\n<boot>***\033[2D"},
    {"a question", ESH_LINE_MODE_CONFIRM, "", 0, 0, "\r\n[Y/N]:"},
    {"a question answered by yes", ESH_LINE_MODE_CONFIRM, "old", 0, 'y', "\r\n[Y/N]:y"},
};

TEST(Redraw, ShowsTheInputAgainAfterSomebodyElseWrote) {
  for (const auto& [why, mode, text, cursor, answer, output] : kRedraws) {
    ScriptedEditor editor("kl");
    ESH_SetPrompt("<boot>");
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, text);
    g_stESh_Line.ulLen = std::strlen(text);
    g_stESh_Line.ulCursor = cursor;
    g_stESh_Line.ulMode = mode;
    g_stESh_Line.usConfirmChosen = answer == 0 ? 0 : 1;
    g_stESh_Line.usConfirmYes = answer == 'y' ? 1 : 0;
    g_bESh_SynInput = 1;
    EXPECT_EQ(GetChar(1), 'k') << why;
    EXPECT_EQ(g_bESh_SynInput, 0) << why;
    EXPECT_EQ(GetChar(1), 'l') << why;
    EXPECT_EQ(editor.TakeOutput(), output) << why;
  }
}

}  // namespace
