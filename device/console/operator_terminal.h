#pragma once

#include <termios.h>

namespace device {

/// Ends a wait when one of the signals comes that end a session (SIGINT, SIGTERM, SIGHUP, SIGQUIT) or that tell of a
/// new window size (SIGWINCH). They are held back from their making on, and only reach Take.
class SessionSignals {
 public:
  /// Holds them back. SIGTTOU and SIGPIPE are ignored from here on.
  SessionSignals();
  /// Those that nobody took stay held back.
  ~SessionSignals();
  SessionSignals(const SessionSignals&) = delete;
  SessionSignals& operator=(const SessionSignals&) = delete;

  /// Readable when a signal is waiting.
  [[nodiscard]] int Descriptor() const { return descriptor_; }
  /// @return the number of a signal that came, 0 when none did.
  int Take();

 private:
  int descriptor_;
};

struct WindowSize {
  unsigned short columns = 0;
  unsigned short rows = 0;
};

/// @return the size of the window on standard input; 0 by 0 when it is unknown.
WindowSize OperatorWindow();

/// Puts the operator's terminal, on standard input, into raw mode and puts its modes back at the end.
class RawTerminal {
 public:
  /// Does nothing when standard input is no terminal.
  RawTerminal();
  /// Puts back the modes that were found.
  ~RawTerminal();
  RawTerminal(const RawTerminal&) = delete;
  RawTerminal& operator=(const RawTerminal&) = delete;

 private:
  termios saved_{};
  bool changed_ = false;
};

}  // namespace device
