#include "term/line_editor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "term/console_mode.h"
#include "term/history.h"
#include "term/key_handlers.h"
#include "term/key_input.h"
#include "term/line_state.h"
#include "term/redisplay.h"
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/result.h"

ESH_LINE_S g_stESh_Line;
ESH_DISPLAY_S g_stESh_Display;
std::uint16_t g_bESh_SynInput = 0;

namespace {

constexpr std::uint64_t kInitialMaxLen = 512;
constexpr std::uint32_t kPageLines = 24;
constexpr std::size_t kOutputRoom = 16384;

/// Output is sent in blocks, since a listing written line by line costs a system call for each; every wait for a key
/// and every start of a tool pushes it out.
void BufferOutput() {
  static char buffer[kOutputRoom];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));
}

void FreeBuffers() {
  for (char** buffer : {&g_stESh_Line.pcLastBuf, &g_stESh_Line.pcBuf, &g_stESh_Line.pcPrompt}) {
    std::free(*buffer);
    *buffer = nullptr;
  }
}

bool AllocateBuffers() {
  g_stESh_Line.pcLastBuf = static_cast<char*>(std::calloc(1, kLineRoom));
  g_stESh_Line.pcBuf = static_cast<char*>(std::calloc(1, kLineRoom));
  g_stESh_Line.pcPrompt = static_cast<char*>(std::calloc(1, kPromptRoom));
  if (g_stESh_Line.pcLastBuf != nullptr && g_stESh_Line.pcBuf != nullptr && g_stESh_Line.pcPrompt != nullptr)
    return true;
  FreeBuffers();
  return false;
}

void PrintPrompt() { std::fputs(g_stESh_Line.pcPrompt, stdout); }

/// Nothing of the line is on the screen yet.
void ForgetShown() {
  g_stESh_Line.ulLastCursor = 0;
  g_stESh_Line.ulLastLen = 0;
}

void StartEmpty() {
  g_stESh_Line.pcBuf[0] = '\0';
  g_stESh_Line.ulCursor = 0;
  g_stESh_Line.ulLen = 0;
  ForgetShown();
}

void TerminateAt(std::uint64_t position, char end) {
  g_stESh_Line.pcBuf[position] = end;
  g_stESh_Line.pcBuf[position + 1] = '\0';
}

}  // namespace

std::uint32_t ESH_LINE_Init() {
  g_stESh_Line = ESH_LINE_S{};
  SaveTermiosMode();
  if (!AllocateBuffers()) return ESH_ERR_FAIL;
  g_stESh_Line.ulMaxLen = kInitialMaxLen;
  g_stESh_Display.ulScrLines = kPageLines;
  BindKeys();
  BufferOutput();
  SetUpTerminal();
  ESH_LINE_SetTermiosMode();
  return kSuccess;
}

void ESH_LINE_Exit() {
  ESH_TERM_OFlush();
  FreeBuffers();
  ESH_LINE_RestoreTermiosMode(1);
}

char* ESH_LINE_GetLine(std::uint32_t mode, std::uint32_t max) {
  g_stESh_Line.ulMaxLen = max;
  g_stESh_Line.ulMode = mode;
  g_stESh_Line.ulEndKey = ESH_LINE_END_NONE;
  if (g_stESh_Line.usKeepBuf == 0) {
    StartEmpty();
    PrintPrompt();
  }
  g_stESh_Line.usKeepBuf = 0;
  while (g_stESh_Line.ulEndKey == ESH_LINE_END_NONE) {
    LINE_Redisplay();
    const int key = GetChar(0);
    if (g_stESh_Line.apfnKeyProc[key](key) != 1) ESH_TERM_Bell();
  }
  return g_stESh_Line.pcBuf;
}

void ForgetLine() {
  for (char* buffer : {g_stESh_Line.pcBuf, g_stESh_Line.pcLastBuf}) explicit_bzero(buffer, kLineRoom);
  StartEmpty();
}

char* ESH_LINE_GetCmdLine() {
  g_stESh_Display.ulMoreLines = g_stESh_Display.ulScrLines;
  g_stESh_Display.ulCurLines = 0;
  char* line = ESH_LINE_GetLine(ESH_LINE_MODE_COMMAND, kMaxCommandLine);
  const std::uint64_t cursor = g_stESh_Line.ulCursor;
  if (g_stESh_Line.ulEndKey == ESH_LINE_END_ENTER) {
    ESH_HIS_Add(line);
    MoveCursorToEnd();
    TerminateAt(g_stESh_Line.ulLen, '\n');
  } else if (g_stESh_Line.ulEndKey == ESH_LINE_END_TAB) {
    MoveCursorToEnd();
    TerminateAt(cursor, '\t');
  }
  return line;
}

void ESH_LINE_SetCmdString() {
  g_stESh_Line.ulLen = std::min<std::uint64_t>(std::strlen(g_stESh_Line.pcBuf), kMaxCommandLine);
  g_stESh_Line.ulCursor = g_stESh_Line.ulLen;
  ForgetShown();
  g_stESh_Line.usKeepBuf = 1;
  PrintPrompt();
}

void ESH_SetPrompt(const char* prompt) {
  if (g_stESh_Line.pcPrompt == nullptr) return;  // the editor could not be made ready: start-up goes on to the reboot
  CopyBounded(g_stESh_Line.pcPrompt, kPromptRoom, prompt);
  g_stESh_Line.ulPromptLen = std::strlen(g_stESh_Line.pcPrompt);
}

const char* ESH_GetPrompt() { return g_stESh_Line.pcPrompt; }
