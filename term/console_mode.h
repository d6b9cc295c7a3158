#pragma once

#include <termios.h>

#include <cstdint>

/// How long a read in raw mode waits for a byte.
inline constexpr cc_t kReadTimeoutTenths = 1;

/// Keeps the console's present settings: what a tool is started with, and what the console gets back at the end.
void SaveTermiosMode();

/// Applies settings at once (typed input is kept), again while a signal interrupts it.
void LINE_SetTermiosMode(const termios& settings);

/// Raw mode: no echo, no line editing and no signal keys; a read returns after 0.1 s with one byte or none.
/// @return the result of the last fcntl(2), which makes descriptor 2 blocking.
int ESH_LINE_SetTermiosMode();

/// Puts back what raw mode changes, as it was found at start.
/// @param echo 1: as saved; any other value: with echo off, so that a password typed to a tool is not shown.
void ESH_LINE_RestoreTermiosMode(std::uint16_t echo);

/// Disables the quit, start, stop and suspend keys, so that no tool can be stopped with nobody to continue it.
void ESH_LINE_MaskSpecKey();

/// The console's settings from before a tool. Whatever mode of its own the tool was killed in, it must not leave a
/// console without line ends behind. Speed and flow control stay as a tool has set them: the mount script may.
class ConsoleKept {
 public:
  /// Notes the settings as they are now.
  ConsoleKept();
  /// Does nothing when they could not be read.
  void PutBack() const;

 private:
  termios settings_{};
  bool known_;
};

/// What a tool starts with: the two above in one step. Between two steps a Ctrl+Z that is typed ahead would stop the
/// tool for ever, and a Ctrl+S its output.
/// @param echo as for ESH_LINE_RestoreTermiosMode.
void SetToolMode(std::uint16_t echo);
