#include "term/prompts.h"

#include <cstdio>

#include "term/key_input.h"
#include "term/line_state.h"
#include "term/terminal.h"

namespace {

constexpr std::uint32_t kTriesPerSecond = 10;
constexpr char kChooseFirst[] = "\r\nBefore pressing ENTER you must choose 'YES' or 'NO'[Y/N]:";

void Choose(int letter, std::uint16_t yes) {
  if (g_stESh_Line.usConfirmChosen == 1) return;
  std::putchar(letter);
  g_stESh_Line.usConfirmChosen = 1;
  g_stESh_Line.usConfirmYes = yes;
}

void TakeBack() {
  if (g_stESh_Line.usConfirmChosen == 0) return;
  ESH_TERM_CursorBack(1);
  ESH_TERM_Erase2LineEnd();
  g_stESh_Line.usConfirmChosen = 0;
}

}  // namespace

std::uint16_t ESH_LINE_GetConfirm(std::uint32_t seconds) {
  g_stESh_Line.usConfirmChosen = 0;
  g_stESh_Line.ulMaxLen = kMaxCommandLine;
  g_stESh_Line.ulMode = ESH_LINE_MODE_CONFIRM;
  g_stESh_Line.ulEndKey = ESH_LINE_END_NONE;
  for (;;) {
    const int key = GetChar(seconds * kTriesPerSecond);
    switch (key) {
      case -1:
      case kKeyCtrlC:
        return 0;
      case 'Y':
      case 'y':
        Choose(key, 1);
        break;
      case 'N':
      case 'n':
        Choose(key, 0);
        break;
      case kKeyBackspace:
      case kKeyDel:
        TakeBack();
        break;
      case '\r':
      case '\n':
        if (g_stESh_Line.usConfirmChosen == 1) return g_stESh_Line.usConfirmYes;
        std::fputs(kChooseFirst, stdout);
        break;
      default:
        break;
    }
  }
}

bool IsConfirmed() {
  const bool yes = ESH_LINE_GetConfirm(kConfirmSeconds) == 1;
  EndTypedLine();
  return yes;
}
