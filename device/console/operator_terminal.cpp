#include "device/console/operator_terminal.h"

#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace device {
namespace {

constexpr int kSessionSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH};

}  // namespace

SessionSignals::SessionSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : kSessionSignals) sigaddset(&signals, number);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  // Putting the terminal's modes back must work from the background too, and a closed output is told by write.
  (void)std::signal(SIGTTOU, SIG_IGN);
  (void)std::signal(SIGPIPE, SIG_IGN);
}

SessionSignals::~SessionSignals() { close(descriptor_); }

int SessionSignals::Take() {
  signalfd_siginfo received{};
  if (read(descriptor_, &received, sizeof(received)) != static_cast<ssize_t>(sizeof(received))) return 0;
  return static_cast<int>(received.ssi_signo);
}

WindowSize OperatorWindow() {
  winsize window{};
  if (ioctl(STDIN_FILENO, TIOCGWINSZ, &window) != 0) return {};
  return {window.ws_col, window.ws_row};
}

RawTerminal::RawTerminal() {
  if (tcgetattr(STDIN_FILENO, &saved_) != 0) return;
  termios raw = saved_;
  cfmakeraw(&raw);
  changed_ = tcsetattr(STDIN_FILENO, TCSADRAIN, &raw) == 0;
}

RawTerminal::~RawTerminal() {
  if (changed_) tcsetattr(STDIN_FILENO, TCSADRAIN, &saved_);
}

}  // namespace device
