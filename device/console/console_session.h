#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "device/console/operator_terminal.h"
#include "device/device.h"

namespace device {

/// Carries a booted device's console to standard output and typed bytes to the console, watches what becomes of the
/// device, and boots it again when it reboots.
class ConsoleSession {
 public:
  /// Both must outlive the session.
  ConsoleSession(Device& device, SessionSignals& signals) : device_(device), signals_(signals) {}

  /// Waits until something happened, at most `time`, and does what is due.
  /// @param input  descriptor to watch as well, -1 for none.
  /// @return true when `input` can be read. What was printed meanwhile is in Printed.
  bool Step(int input, std::chrono::milliseconds time);

  /// True while the device is on its way to its shell.
  [[nodiscard]] bool IsStarting() const { return device_.IsStarting(); }

  /// What the console printed during the last step, and what was said between.
  [[nodiscard]] std::string_view Printed() const { return printed_; }

  /// Types bytes on the console, now or as soon as it takes them.
  void Type(std::string_view bytes);
  /// True while the console has not taken all that was typed.
  [[nodiscard]] bool IsTyping() const { return !typed_.empty(); }

  /// Ends the session: the device is powered off.
  void Leave(int exit_status);
  /// @return exit status of the session once it has ended.
  [[nodiscard]] std::optional<int> Ended() const { return ended_; }

  /// Writes a line of our own between the console's.
  void Say(const std::string& line);

 private:
  void Print(std::string_view bytes);
  void TakeSignals();
  bool CopyBlock();
  /// Prints what a console that nobody writes to any more still holds.
  void CopyRest();
  void FlushTyped();
  void FollowDevice();
  void BootAgain();

  Device& device_;
  SessionSignals& signals_;
  std::string printed_;
  std::string typed_;
  std::optional<int> ended_;
  std::chrono::steady_clock::time_point last_boot_ = std::chrono::steady_clock::now();
  int idle_reboots_ = 0;  ///< in a row, each soon after its boot
};

/// Connects the console of a device that was started with the operator's terminal until the operator leaves with
/// Ctrl+\, the device halts, or a signal ends the session. A device that reboots is booted again.
/// @return exit status of the session: 0, 128 + number of the signal, 1 when the device failed.
int RelayTerminal(Device& device, SessionSignals& signals);

/// Types standard input, which is a file or a pipe, on a started device's console, a line each time the console waits
/// for one, and powers the device off when it is quiet after the last.
/// @return exit status of the session, as above.
int FeedInput(Device& device, SessionSignals& signals);

}  // namespace device
