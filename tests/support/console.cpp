#include "tests/support/console.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

void ConsoleEnd::Type(std::string_view keys) {
  const auto deadline = steady_clock::now() + kPatience;
  while (!keys.empty() && !has_given_up_) {
    const ssize_t written = write(ConsoleFd(), keys.data(), keys.size());
    if (written > 0)
      keys.remove_prefix(static_cast<std::size_t>(written));
    else if (steady_clock::now() > deadline)
      GiveUp("no keys are taken");
    else
      TakeIn(milliseconds(20));  // the line is full until the far end has read, and it may wait to be heard
  }
}

std::string ConsoleEnd::Expect(std::string_view text) {
  auto deadline = steady_clock::now() + kPatience;
  std::size_t found = std::string::npos;
  while ((found = printed_.find(text, waited_for_)) == std::string::npos) {
    if (has_given_up_) return {};
    if (steady_clock::now() > deadline) GiveUp("never printed: " + std::string(text));
    if (TakeIn(milliseconds(100))) deadline = steady_clock::now() + kPatience;
  }
  const std::size_t start = std::exchange(waited_for_, found + text.size());
  return Lines(start, waited_for_);
}

void ConsoleEnd::Listen(milliseconds time) {
  const auto end = steady_clock::now() + time;
  while (steady_clock::now() < end) TakeIn(milliseconds(20));
}

bool ConsoleEnd::TakeIn(milliseconds time) {
  pollfd console{ConsoleFd(), POLLIN, 0};
  if (poll(&console, 1, static_cast<int>(time.count())) <= 0) return false;
  char bytes[4096];
  const ssize_t length = read(ConsoleFd(), bytes, sizeof(bytes));
  if (length > 0)
    printed_.append(bytes, static_cast<std::size_t>(length));
  else
    std::this_thread::sleep_for(milliseconds(1));  // a closed terminal says so at once, and for ever
  return length > 0;
}

void ConsoleEnd::GiveUp(const std::string& problem) {
  has_given_up_ = true;
  ADD_FAILURE() << problem << ", but: " << Lines(waited_for_);
}

std::string ConsoleEnd::Lines(std::size_t start, std::size_t end) const {
  std::string lines = printed_.substr(start, end - start);
  std::erase(lines, '\r');
  return lines;
}

Console::Console(const std::function<void()>& body) {
  std::fflush(stdout);  // or the child would write the test program's own output once more
  const winsize size{24, 80, 0, 0};
  int keyboard = -1;
  child_ = forkpty(&keyboard, nullptr, nullptr, &size);
  if (child_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setenv("TERM", "xterm", 1);
    body();
    std::fflush(stdout);
    _exit(0);
  }
  EXPECT_GT(child_, 0) << "no pseudo terminal";
  keyboard_.Reset(keyboard);
  fcntl(keyboard, F_SETFL, O_NONBLOCK);
}

Console::~Console() {
  kill(child_, SIGKILL);
  waitpid(child_, nullptr, 0);
}
