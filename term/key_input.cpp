#include "term/key_input.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>

#include "term/line_state.h"
#include "term/redisplay.h"
#include "term/terminal.h"

namespace {

constexpr std::int64_t kNanosPerSecond = 1'000'000'000;
constexpr std::int64_t kTryNanos = 100'000'000;
constexpr std::int64_t kEarlyNanos = kTryNanos / 2;

std::int64_t NowNanos() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNanosPerSecond + now.tv_nsec;
}

/// A console that has hung up answers every read at once with nothing. Each try then still takes its 0.1 s, or the
/// shell would spin until the line comes back.
void WaitOutTheTry(std::int64_t started) {
  const std::int64_t elapsed = NowNanos() - started;
  if (elapsed >= kEarlyNanos) return;
  const timespec rest{0, kTryNanos - elapsed};
  nanosleep(&rest, nullptr);
}

/// Reads one byte, straight from the descriptor: input that was read ahead would be lost to the next tool.
/// @return the byte, or 0 for an empty try.
int ReadByte() {
  const std::int64_t started = NowNanos();
  unsigned char byte = 0;
  if (read(STDIN_FILENO, &byte, 1) == 1) return byte;
  WaitOutTheTry(started);
  return 0;
}

void RedrawConfirmation() {
  std::fputs("\r\n[Y/N]:", stdout);
  if (g_stESh_Line.usConfirmChosen == 1) std::putchar(g_stESh_Line.usConfirmYes == 1 ? 'y' : 'n');
  ESH_TERM_OFlush();
}

void RedrawLine() {
  if (g_stESh_Line.pcBuf[0] == '\0') return;
  std::puts("\r");
  std::fputs(g_stESh_Line.pcPrompt, stdout);
  LINE_Printf(g_stESh_Line.pcBuf);
  LINE_MoveCurses(g_stESh_Line.ulLen, g_stESh_Line.ulCursor);
  ESH_TERM_OFlush();
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
  ESH_TERM_OFlush();
  for (std::uint32_t empty = 0; tries == 0 || empty < tries; ++empty) {
    RedrawIfAsked();
    const int byte = ReadByte();
    if (byte != 0) return byte;
  }
  return -1;
}

void LINE_EscapeSequenceNULL() {
  while (GetChar(1) != -1) {
  }
}
