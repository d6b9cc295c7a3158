#pragma once

#include <poll.h>

#include <string>
#include <vector>

#include "util/unique_handle.h"

namespace device {

/// The serial line between an emulated machine and the operator's side. Between the emulator's socket and the pseudo
/// terminal that the operator's side holds, it keeps what nobody reads yet: the machine must not stand still for it.
class ConsoleLine {
 public:
  /// @param serial  the emulator's serial port.
  /// @return an empty text, or one line that says what went wrong.
  [[nodiscard]] std::string Open(UniqueFd serial);

  /// Gives away the operator's end. It hangs up when this object is gone.
  [[nodiscard]] UniqueFd TakeOperatorEnd() { return std::move(operator_end_); }

  /// Adds what the line waits for.
  void Watch(std::vector<pollfd>& waiting) const;
  /// Moves what can be moved now.
  void Carry();

  /// Moves what a machine that is down has printed, waiting at most so long for somebody to read it.
  void CarryRest(int milliseconds);

  /// @return what the machine wrote last, at most a screen, in case nobody ever reads it.
  [[nodiscard]] const std::string& LastWords() const { return last_words_; }

 private:
  bool TakePrinted();

  UniqueFd serial_;
  UniqueFd terminal_;  ///< the near end of the pseudo terminal, raw
  UniqueFd operator_end_;
  std::string printed_;  ///< on its way to the operator
  std::string typed_;    ///< on its way to the machine
  std::string last_words_;
};

}  // namespace device
