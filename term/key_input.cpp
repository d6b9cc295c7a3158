#include "term/key_input.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "term/console_mode.h"
#include "term/line_state.h"
#include "term/redisplay.h"
#include "term/terminal.h"

namespace {

constexpr std::chrono::duration<int, std::deci> kTry{kReadTimeoutTenths};

/// Reads one byte, straight from the descriptor: input that was read ahead would be lost to the next tool.
/// @return the byte, or 0 for an empty try.
int ReadByte() {
  const auto started = std::chrono::steady_clock::now();
  unsigned char byte = 0;
  if (read(STDIN_FILENO, &byte, 1) == 1) return byte;
  // A console that has hung up answers every read at once with nothing. Each try then still takes its 0.1 s, or the
  // shell would spin until the line comes back.
  std::this_thread::sleep_until(started + kTry);
  return 0;
}

void RedrawConfirmation() {
  std::fputs("\r\n[Y/N]:", stdout);
  if (g_stESh_Line.usConfirmChosen == 1) std::putchar(g_stESh_Line.usConfirmYes == 1 ? 'y' : 'n');
}

void RedrawLine() {
  if (g_stESh_Line.pcBuf[0] == '\0') return;
  std::puts("\r");
  std::fputs(g_stESh_Line.pcPrompt, stdout);
  LINE_Printf(g_stESh_Line.pcBuf);
  LINE_MoveCurses(g_stESh_Line.ulLen, g_stESh_Line.ulCursor);
}

void RedrawIfAsked() {
  if (g_bESh_SynInput == 0) return;
  if (g_stESh_Line.ulMode == ESH_LINE_MODE_CONFIRM)
    RedrawConfirmation();
  else
    RedrawLine();
  g_bESh_SynInput = 0;
}

}  // namespace

int GetChar(std::uint32_t tries) {
  for (std::uint32_t empty = 0; tries == 0 || empty < tries; ++empty) {
    RedrawIfAsked();
    ESH_TERM_OFlush();
    const int byte = ReadByte();
    if (byte != 0) return byte;
  }
  return -1;
}

void LINE_EscapeSequenceNULL() {
  while (GetChar(1) != -1) {
  }
}
