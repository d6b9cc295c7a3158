#include "tests/support/console.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

/// Only a failing test waits that long.
constexpr int kPatienceMillis = 20'000;
constexpr std::size_t kReportRoom = 4096;

bool HasInput(int fd) {
  pollfd entry{.fd = fd, .events = POLLIN, .revents = 0};
  return poll(&entry, 1, kPatienceMillis) == 1;
}

[[noreturn]] void RunChild(const char* term, const Console::Body& body, int report_fd) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (term == nullptr)
    unsetenv("TERM");
  else
    setenv("TERM", term, 1);
  body([report_fd](std::string_view message) { (void)!write(report_fd, message.data(), message.size()); });
  std::fflush(stdout);
  _exit(0);
}

}  // namespace

Console::Console(const Kind& kind, const Body& body) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    ADD_FAILURE() << "no socket pair";
    return;
  }
  reports_.Reset(ends[0]);
  const UniqueFd report_fd(ends[1]);
  std::fflush(stdout);  // or the child would write the test program's own output once more
  const winsize size{kind.rows, kind.columns, 0, 0};
  int keyboard = -1;
  child_ = forkpty(&keyboard, nullptr, nullptr, &size);
  if (child_ == 0) RunChild(kind.term, body, report_fd.Get());
  keyboard_.Reset(keyboard);
  EXPECT_GT(child_, 0) << "no pseudo terminal";
}

Console::~Console() {
  if (child_ > 0) {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
}

bool Console::HasEnded(int& status) {
  if (waitpid(child_, &status, WNOHANG) != child_) return false;
  child_ = -1;
  return true;
}

void Console::Type(std::string_view keys) const {
  EXPECT_EQ(write(keyboard_.Get(), keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

bool Console::ReadMore(std::string& output, std::size_t most) const {
  char buffer[4096];
  if (!HasInput(keyboard_.Get())) return false;
  const ssize_t count = read(keyboard_.Get(), buffer, std::min(most, sizeof(buffer)));
  if (count <= 0) return false;
  output.append(buffer, static_cast<std::size_t>(count));
  return true;
}

std::string Console::Read(std::size_t count) const {
  std::string output;
  while (output.size() < count && ReadMore(output, count - output.size())) {
  }
  return output;
}

std::string Console::ReadUntil(std::string_view mark) const {
  std::string output;
  while (!output.ends_with(mark) && ReadMore(output, 1)) {
  }
  return output;
}

std::string Console::ReadUntilOneOf(std::initializer_list<std::string_view> marks) const {
  std::string output;
  const auto ends_in = [&output](std::string_view mark) { return output.ends_with(mark); };
  while (!std::any_of(marks.begin(), marks.end(), ends_in) && ReadMore(output, SIZE_MAX)) {
  }
  return output;
}

std::string Console::ReadToEnd() const { return Read(SIZE_MAX); }

std::string Console::NextReport() const {
  char message[kReportRoom];
  if (!HasInput(reports_.Get())) return {};
  const ssize_t count = read(reports_.Get(), message, sizeof(message));
  return count <= 0 ? std::string() : std::string(message, static_cast<std::size_t>(count));
}

termios Console::Settings() const {
  termios settings{};
  EXPECT_EQ(tcgetattr(keyboard_.Get(), &settings), 0);
  return settings;
}

std::vector<unsigned> ModesOf(const termios& settings) {
  std::vector<unsigned> modes = {settings.c_iflag, settings.c_oflag, settings.c_cflag, settings.c_lflag};
  modes.insert(modes.end(), std::begin(settings.c_cc), std::end(settings.c_cc));
  return modes;
}
