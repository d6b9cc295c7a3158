#include "term/pager.h"

#include <cstdio>
#include <cstring>

#include "term/key_input.h"
#include "term/line_state.h"
#include "term/redisplay.h"
#include "term/terminal.h"
#include "util/result.h"

namespace {

constexpr char kMorePrompt[] = "---- More ----     ";
constexpr std::uint64_t kMorePromptWidth = sizeof(kMorePrompt) - 1;
constexpr std::uint32_t kMoreTries = 6000;  // 600 s

/// Ends the line that `text` begins with.
/// @return what follows it, or NULL when no line end is left. A "\r" swallows whatever byte follows it.
char* CutLine(char* text) {
  char* end = text + std::strcspn(text, "\r\n");
  if (*end == '\0') return nullptr;
  const bool swallow_next = *end == '\r' ? end[1] != '\0' : end[1] == '\r';
  *end = '\0';
  return end + (swallow_next ? 2 : 1);
}

/// @return true to go on.
bool AskForMore() {
  std::fputs(kMorePrompt, stdout);
  g_stESh_Display.ulMoreLines = g_stESh_Display.ulScrLines;
  g_stESh_Display.ulCurLines = 1;
  const int key = GetChar(kMoreTries);
  if (key == kKeyEscape) LINE_EscapeSequenceNULL();
  ESH_TERM_CursorBack(kMorePromptWidth);
  ESH_TERM_Erase2LineEnd();
  if (key == '\r' || key == '\n') {
    g_stESh_Display.ulMoreLines = g_stESh_Display.ulCurLines;  // the next line brings the next prompt
    return true;
  }
  return key == ' ';
}

/// Counts a line that was written. @return false when the user stops here.
bool CountLine() {
  if (g_stESh_Display.ulScrLines == 0) return true;
  ++g_stESh_Display.ulCurLines;
  return g_stESh_Display.ulCurLines < g_stESh_Display.ulMoreLines || AskForMore();
}

}  // namespace

std::uint16_t ESH_LINE_DisplayString(char* text, std::uint16_t paging) {
  MoveCursorToEnd();
  for (char* next = CutLine(text); next != nullptr; next = CutLine(text)) {
    std::printf("%s\r\n", text);
    if (paging == 1 && !CountLine()) return 0;
    text = next;
  }
  std::fputs(text, stdout);
  ESH_TERM_OFlush();  // what comes next may keep the operator waiting
  return 1;
}

std::uint32_t ESH_OutString(char* text) { return ESH_LINE_DisplayString(text, 1) == 1 ? kSuccess : ESH_ERR_FAIL; }
