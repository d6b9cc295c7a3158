#pragma once

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

#include "util/unique_handle.h"

namespace device {

/// Blocks these signals and no others. @return a non-blocking descriptor from which they are read as they come.
inline UniqueFd CatchSignals(std::initializer_list<int> numbers) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : numbers) sigaddset(&signals, number);
  sigprocmask(SIG_SETMASK, &signals, nullptr);
  return UniqueFd(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

/// Takes all that came. @return whether one was SIGUSR1.
inline bool DrainSignals(const UniqueFd& signals) {
  signalfd_siginfo received{};
  bool has_usr1 = false;
  while (read(signals.Get(), &received, sizeof(received)) == static_cast<ssize_t>(sizeof(received)))
    has_usr1 = has_usr1 || received.ssi_signo == SIGUSR1;
  return has_usr1;
}

}  // namespace device
