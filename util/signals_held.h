#pragma once

#include <csignal>

/// Holds all signals back while it lives. One that came in between is delivered when it ends.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before_);
  }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;
  ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};
