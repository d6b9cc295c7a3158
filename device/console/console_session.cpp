#include "device/console/console_session.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

namespace device {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kSignalStatus = 128;
/// A device whose shell cannot start reboots at once, for ever; after so many quick reboots in a row it is left off.
constexpr int kMaxIdleReboots = 5;
constexpr std::chrono::seconds kQuickReboot{30};  // an emulated device needs a few seconds to get that far

std::string LastLine(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

}  // namespace

bool ConsoleSession::Step(int input, std::chrono::milliseconds time) {
  printed_.clear();
  const short console_events = typed_.empty() ? POLLIN : POLLIN | POLLOUT;
  std::array<pollfd, 3> waiting{
      {{device_.Console(), console_events, 0}, {signals_.Descriptor(), POLLIN, 0}, {input, POLLIN, 0}}};
  poll(waiting.data(), waiting.size(), static_cast<int>(time.count()));
  TakeSignals();
  FlushTyped();
  (void)CopyBlock();  // one at a time: keys must get through to a device that prints without end
  // A console that hangs up belongs to a device that goes down: how is told any moment.
  if ((waiting[0].revents & POLLHUP) != 0) poll(nullptr, 0, 1);
  if (!ended_) FollowDevice();
  return waiting[2].revents != 0;
}

void ConsoleSession::Type(std::string_view bytes) {
  typed_ += bytes;
  idle_reboots_ = 0;
  FlushTyped();
}

void ConsoleSession::FlushTyped() {
  while (!typed_.empty()) {
    const ssize_t taken = write(device_.Console(), typed_.data(), typed_.size());
    if (taken > 0) typed_.erase(0, static_cast<std::size_t>(taken));
    if (taken < 0 && errno == EIO) typed_.clear();  // nobody is there to read it any more
    if (taken <= 0 && errno != EINTR) return;
  }
}

bool ConsoleSession::CopyBlock() {
  std::array<char, 4096> block{};
  const ssize_t length = read(device_.Console(), block.data(), block.size());
  if (length <= 0 || ended_) return false;
  Print({block.data(), static_cast<std::size_t>(length)});
  return true;
}

void ConsoleSession::CopyRest() {
  while (CopyBlock()) {
  }
}

void ConsoleSession::Print(std::string_view bytes) {
  printed_ += bytes;
  constexpr std::size_t kPiece = 512;  // a pipe that poll calls writable takes at least this much without blocking
  while (!bytes.empty()) {
    std::array<pollfd, 2> waiting{{{STDOUT_FILENO, POLLOUT, 0}, {signals_.Descriptor(), POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), -1);
    TakeSignals();
    if (waiting[0].revents == 0) {
      if (ended_) return;  // the reader is stuck and the session is over
      continue;
    }
    const ssize_t written = write(STDOUT_FILENO, bytes.data(), std::min(bytes.size(), kPiece));
    if (written < 0 && errno != EINTR && errno != EAGAIN) {
      Leave(kSignalStatus + SIGPIPE);
      return;
    }
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void ConsoleSession::Say(const std::string& line) { Print("\r\n*** " + line + "\r\n"); }

void ConsoleSession::TakeSignals() {
  while (const int number = signals_.Take()) {
    if (number == SIGWINCH) {
      const WindowSize window = OperatorWindow();
      device_.ResizeConsole(window.columns, window.rows);
    } else if (!ended_) {
      Leave(kSignalStatus + number);
    }
  }
}

void ConsoleSession::Leave(int exit_status) {
  ended_ = exit_status;
  device_.PowerOff();
}

void ConsoleSession::FollowDevice() {
  switch (device_.WaitForOutcome(std::chrono::milliseconds(0))) {
    case Outcome::kRunning:
    case Outcome::kHandedOver:
      return;
    case Outcome::kRebooted:
      CopyRest();
      BootAgain();
      return;
    case Outcome::kShellEnded:
      CopyRest();
      Say("The shell ended with status " + std::to_string(device_.ShellStatus()) + ". The device halts.");
      Leave(device_.ShellStatus() == 0 ? 0 : 1);
      return;
    case Outcome::kPoweredOff:
      CopyRest();
      Say("The device has halted.");
      Leave(0);
      return;
    case Outcome::kDied:
      CopyRest();
      Say("The device died: " + LastLine(device_.Report()));
      Leave(1);
      return;
  }
}

void ConsoleSession::BootAgain() {
  idle_reboots_ = Clock::now() - last_boot_ < kQuickReboot ? idle_reboots_ + 1 : 0;
  if (idle_reboots_ > kMaxIdleReboots) {
    Say("The device reboots again and again. It is left off.");
    Leave(1);
    return;
  }
  Say("The device reboots.");
  typed_.clear();
  last_boot_ = Clock::now();
  if (const std::string problem = device_.PowerOn(); !problem.empty()) {
    Say(problem);
    Leave(1);
  }
}

}  // namespace device
