#include "term/key_handlers.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "term/history.h"
#include "term/key_input.h"
#include "term/line_state.h"
#include "term/redisplay.h"
#include "term/terminal.h"

namespace {

constexpr std::uint16_t kAccepted = 1;
constexpr std::uint16_t kRefused = 0;
constexpr int kFirstPrintable = 32;

struct KeyBinding {
  unsigned char key;
  LINE_KEY_F handler;
};

constexpr unsigned char Ctrl(char letter) { return static_cast<unsigned char>(letter - 'A' + 1); }

constexpr KeyBinding kKeyBindings[] = {
    {Ctrl('A'), LINE_KeyCtrlA}, {Ctrl('B'), LINE_KeyLeft},    {Ctrl('C'), LINE_KeyCtrlC}, {Ctrl('D'), LINE_KeyDelete},
    {Ctrl('E'), LINE_KeyCtrlE}, {Ctrl('F'), LINE_KeyRight},   {'\b', LINE_KeyBackspace},  {'\t', LINE_KeyTab},
    {'\n', LINE_KeyEnter},      {'\r', LINE_KeyEnter},        {kKeyCtrlZ, LINE_KeyCtrlZ}, {kKeyEscape, LINE_KeyEscape},
    {'?', LINE_KeyHelp},        {kKeyDel, LINE_KeyBackspace},
};

bool InCommandMode() { return g_stESh_Line.ulMode == ESH_LINE_MODE_COMMAND; }

/// Makes the buffer the one byte by which the caller tells how the read ended. What the screen shows is unchanged.
void EndWithByte(char byte, std::uint32_t end_key) {
  g_stESh_Line.pcBuf[0] = byte;
  g_stESh_Line.pcBuf[1] = '\0';
  g_stESh_Line.ulEndKey = end_key;
}

std::uint16_t RecallHistory(std::uint16_t (*recall)(std::uint64_t, char*)) {
  if (!InCommandMode()) return kAccepted;
  if (recall(kLineRoom, g_stESh_Line.pcBuf) != 1) return kRefused;
  g_stESh_Line.ulLen = std::strlen(g_stESh_Line.pcBuf);
  g_stESh_Line.ulCursor = g_stESh_Line.ulLen;
  return kAccepted;
}

/// ESC [ 3 ~ is Delete. When nothing follows the 3 there is nothing to read away.
std::uint16_t DeleteSequence(int key) {
  const int last = GetChar(1);
  if (last == '~') return LINE_KeyDelete(key);
  if (last != -1) LINE_EscapeSequenceNULL();
  return kRefused;
}

std::uint16_t RefuseSequence() {
  LINE_EscapeSequenceNULL();
  return kRefused;
}

}  // namespace

std::uint16_t LINE_KeyDefault(int key) { return key < kFirstPrintable ? kAccepted : LINE_KeyInsert(key); }

std::uint16_t LINE_KeyInsert(int key) {
  if (g_stESh_Line.ulLen >= g_stESh_Line.ulMaxLen) {
    ESH_TERM_Bell();  // the read loop rings once more for the refusal: a full line sounds different
    return kRefused;
  }
  char* at = g_stESh_Line.pcBuf + g_stESh_Line.ulCursor;
  std::memmove(at + 1, at, g_stESh_Line.ulLen - g_stESh_Line.ulCursor + 1);
  *at = static_cast<char>(key);
  ++g_stESh_Line.ulCursor;
  ++g_stESh_Line.ulLen;
  return kAccepted;
}

std::uint16_t LINE_KeyCtrlA(int /*key*/) {
  g_stESh_Line.ulCursor = 0;
  return kAccepted;
}

std::uint16_t LINE_KeyCtrlE(int /*key*/) {
  g_stESh_Line.ulCursor = g_stESh_Line.ulLen;
  return kAccepted;
}

std::uint16_t LINE_KeyLeft(int /*key*/) {
  if (g_stESh_Line.ulCursor == 0) return kRefused;
  --g_stESh_Line.ulCursor;
  return kAccepted;
}

std::uint16_t LINE_KeyRight(int /*key*/) {
  if (g_stESh_Line.ulCursor >= g_stESh_Line.ulLen) return kRefused;
  ++g_stESh_Line.ulCursor;
  return kAccepted;
}

std::uint16_t LINE_KeyBackspace(int /*key*/) {
  if (g_stESh_Line.ulCursor == 0) return kRefused;
  --g_stESh_Line.ulCursor;
  return LINE_DeleteText(g_stESh_Line.ulCursor, g_stESh_Line.ulCursor);
}

std::uint16_t LINE_KeyDelete(int /*key*/) {
  if (g_stESh_Line.ulCursor >= g_stESh_Line.ulLen) return kRefused;
  return LINE_DeleteText(g_stESh_Line.ulCursor, g_stESh_Line.ulCursor);
}

std::uint16_t LINE_KeyEnter(int /*key*/) {
  g_stESh_Line.ulEndKey = ESH_LINE_END_ENTER;
  return kAccepted;
}

std::uint16_t LINE_KeyTab(int /*key*/) {
  if (InCommandMode()) g_stESh_Line.ulEndKey = ESH_LINE_END_TAB;
  return kAccepted;
}

std::uint16_t LINE_KeyHelp(int key) {
  const std::uint16_t verdict = LINE_KeyInsert(key);
  if (verdict == kAccepted && InCommandMode()) {
    LINE_Redisplay();
    g_stESh_Line.ulEndKey = ESH_LINE_END_HELP;
  }
  return verdict;
}

std::uint16_t LINE_KeyCtrlC(int /*key*/) {
  if (!InCommandMode()) EndWithByte(kKeyCtrlC, ESH_LINE_END_CTRL_C);
  return kAccepted;
}

std::uint16_t LINE_KeyCtrlZ(int /*key*/) {
  if (InCommandMode()) EndWithByte(kKeyCtrlZ, ESH_LINE_END_CTRL_Z);
  return kAccepted;
}

std::uint16_t LINE_KeyEscape(int key) {
  if (GetChar(1) != '[') return RefuseSequence();
  switch (GetChar(1)) {
    case 'A':
      return RecallHistory(ESH_HIS_ArrowUp);
    case 'B':
      return RecallHistory(ESH_HIS_ArrowDown);
    case 'C':
      return LINE_KeyRight(key);
    case 'D':
      return LINE_KeyLeft(key);
    case '3':
      return DeleteSequence(key);
    default:
      return RefuseSequence();
  }
}

std::uint16_t LINE_DeleteText(std::uint64_t a, std::uint64_t b) {
  const auto [first, last] = std::minmax(a, b);
  char* at = g_stESh_Line.pcBuf + first;
  std::memmove(at, g_stESh_Line.pcBuf + last + 1, g_stESh_Line.ulLen - last);
  g_stESh_Line.ulLen -= last - first + 1;
  return kAccepted;
}

void BindKeys() {
  std::fill(std::begin(g_stESh_Line.apfnKeyProc), std::end(g_stESh_Line.apfnKeyProc), LINE_KeyDefault);
  for (const KeyBinding& binding : kKeyBindings) g_stESh_Line.apfnKeyProc[binding.key] = binding.handler;
}
