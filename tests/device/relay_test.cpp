#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

#include "tests/device/operator_console.h"
#include "util/unique_handle.h"

namespace {

constexpr int kPatienceMs = 60000;

/// The program behind ./run, on a terminal of the test's own.
class NativeRelay : public testing::Test {
 protected:
  void SetUp() override {
    // What the program leaves running becomes the test's own child, and shows.
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  }

  void Start() {
    const winsize window{24, 80, 0, 0};
    int terminal = -1;
    int keyboard = -1;
    ASSERT_EQ(openpty(&keyboard, &terminal, nullptr, nullptr, &window), 0);
    keyboard_.Reset(keyboard);
    terminal_.Reset(terminal);
    fcntl(keyboard, F_SETFD, FD_CLOEXEC);  // with a copy in the program its window could not be closed
    ASSERT_EQ(tcgetattr(terminal, &before_), 0);
    before_.c_cc[VINTR] = 'X' - '@';  // modes that nobody would take for the usual ones
    before_.c_lflag &= ~static_cast<tcflag_t>(ECHOE);
    ASSERT_EQ(tcsetattr(terminal, TCSANOW, &before_), 0);
    program_ = fork();
    if (program_ == 0) {
      login_tty(terminal);
      execl(ESH_DEVICE_PROGRAM, "esh-device", nullptr);
      _exit(127);
    }
    Expect("<boot>");
  }

  void TearDown() override {
    if (program_ > 0) {
      kill(program_, SIGKILL);
      waitpid(program_, nullptr, 0);
    }
  }

  void Type(std::string_view keys) {
    ASSERT_EQ(write(keyboard_.Get(), keys.data(), keys.size()), ssize_t(keys.size()));
  }

  void Expect(std::string_view text) {
    std::string printed;
    while (printed.find(text) == std::string::npos) {
      pollfd ready{keyboard_.Get(), POLLIN, 0};
      char bytes[4096];
      const ssize_t length = poll(&ready, 1, kPatienceMs) > 0 ? read(keyboard_.Get(), bytes, sizeof(bytes)) : -1;
      ASSERT_GT(length, 0) << "never printed: " << text << ", but: " << printed;
      printed.append(bytes, static_cast<std::size_t>(length));
    }
  }

  /// The program's child, through which the device ends when it ends.
  [[nodiscard]] pid_t Keeper() const {
    const std::string id = std::to_string(program_);
    pid_t child = -1;
    std::ifstream("/proc/" + id + "/task/" + id + "/children") >> child;
    return child;
  }

  /// Waits for the program and for all that it started. @return its wait status.
  int WaitForEnd() {
    int status = -1;
    EXPECT_TRUE(Eventually([&] { return waitpid(program_, &status, WNOHANG) == program_; })) << "it does not end";
    program_ = -1;
    EXPECT_TRUE(Eventually([] { return waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; })) << "something is left";
    return status;
  }

  void ExpectTerminalAsBefore() {
    termios after{};
    ASSERT_EQ(tcgetattr(terminal_.Get(), &after), 0);
    EXPECT_EQ(after.c_lflag, before_.c_lflag);
    EXPECT_EQ(after.c_iflag, before_.c_iflag);
    EXPECT_EQ(after.c_oflag, before_.c_oflag);
    EXPECT_EQ(std::memcmp(after.c_cc, before_.c_cc, sizeof(after.c_cc)), 0);
  }

  UniqueFd keyboard_;
  UniqueFd terminal_;
  termios before_{};
  pid_t program_ = -1;
};

TEST_F(NativeRelay, LeavesByItsKeyAndGivesTheTerminalBack) {
  Start();
  Type("pwd\r");
  Expect("flash:");
  Type("\x1c");
  EXPECT_EQ(WaitForEnd(), 0);
  ExpectTerminalAsBefore();
}

TEST_F(NativeRelay, GivesTheTerminalBackWhenASignalEndsIt) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
    Start();
    kill(program_, signal);
    EXPECT_EQ(WEXITSTATUS(WaitForEnd()), 128 + signal);
    ExpectTerminalAsBefore();
  }
}

TEST_F(NativeRelay, GivesTheTerminalBackWhenTheDeviceDies) {
  Start();
  kill(Keeper(), SIGKILL);
  Expect("The device died");
  EXPECT_EQ(WEXITSTATUS(WaitForEnd()), 1);
  ExpectTerminalAsBefore();
}

TEST_F(NativeRelay, EndsWithItsWindow) {
  Start();
  keyboard_.Reset();
  EXPECT_NE(WEXITSTATUS(WaitForEnd()), 0);
}

TEST_F(NativeRelay, LeavesNothingRunningWhenItIsKilled) {
  Start();
  kill(program_, SIGKILL);
  EXPECT_TRUE(WIFSIGNALED(WaitForEnd()));
}

TEST_F(NativeRelay, TypesALineOfAPipeWheneverTheConsoleWaits) {
  const std::string command = std::string("printf 'dir\\nreboot\\nn\\nsystem-view' | ") + ESH_DEVICE_PROGRAM;
  std::FILE* pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): as an operator would pipe
  ASSERT_NE(pipe, nullptr);
  std::string printed;
  char bytes[4096];
  for (std::size_t length = 1; length > 0;) {
    length = std::fread(bytes, 1, sizeof(bytes), pipe);
    printed.append(bytes, length);
  }
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_NE(printed.find("Directory of flash:"), std::string::npos);
  EXPECT_NE(printed.find("System View"), std::string::npos) << printed;
}

}  // namespace
