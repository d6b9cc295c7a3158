#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "tests/device/operator_console.h"
#include "tests/support/console.h"

namespace {

/// The program behind ./run, on a terminal of the test's own.
class NativeRelay : public testing::Test {
 protected:
  void SetUp() override {
    // What the program leaves running becomes the test's own child, and shows.
    ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  }

  void Start() {
    terminal_ = std::make_unique<Console>(Console::Kind{}, [](const Console::Report& report) {
      termios modes{};
      tcgetattr(STDIN_FILENO, &modes);
      modes.c_cc[VINTR] = 'X' - '@';  // modes that nobody would take for the usual ones
      modes.c_lflag &= ~static_cast<tcflag_t>(ECHOE);
      tcsetattr(STDIN_FILENO, TCSANOW, &modes);
      report("set");
      execl(ESH_DEVICE_PROGRAM, "esh-device", nullptr);
    });
    ASSERT_GT(terminal_->Child(), 0);
    ASSERT_EQ(terminal_->NextReport(), "set");
    before_ = terminal_->Settings();
    Expect("<boot>");
  }

  void Expect(std::string_view text) const {
    const std::string printed = terminal_->ReadUntil(text);
    ASSERT_TRUE(printed.ends_with(text)) << "never printed: " << text << ", but: " << printed;
  }

  /// The program's child, through which the device ends when it ends.
  [[nodiscard]] pid_t Keeper() const {
    const std::string id = std::to_string(terminal_->Child());
    pid_t child = -1;
    std::ifstream("/proc/" + id + "/task/" + id + "/children") >> child;
    return child;
  }

  /// Waits for the program and for all that it started. @return its wait status.
  [[nodiscard]] int WaitForEnd() const {
    int status = -1;
    EXPECT_TRUE(Eventually([&] { return terminal_->HasEnded(status); })) << "it does not end";
    EXPECT_TRUE(Eventually([] { return waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; })) << "something is left";
    return status;
  }

  void ExpectTerminalAsBefore() const { EXPECT_EQ(ModesOf(terminal_->Settings()), ModesOf(before_)); }

  std::unique_ptr<Console> terminal_;
  termios before_{};
};

TEST_F(NativeRelay, GivesTheTerminalBackWhenASignalEndsIt) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
    ASSERT_NO_FATAL_FAILURE(Start());
    kill(terminal_->Child(), signal);
    EXPECT_EQ(WEXITSTATUS(WaitForEnd()), 128 + signal);
    ExpectTerminalAsBefore();
  }
}

TEST_F(NativeRelay, GivesTheTerminalBackWhenTheDeviceDies) {
  ASSERT_NO_FATAL_FAILURE(Start());
  const pid_t keeper = Keeper();
  ASSERT_GT(keeper, 0);
  kill(keeper, SIGKILL);
  Expect("The device died");
  EXPECT_EQ(WEXITSTATUS(WaitForEnd()), 1);
  ExpectTerminalAsBefore();
}

TEST_F(NativeRelay, EndsWithItsWindow) {
  Start();
  terminal_->Close();
  EXPECT_NE(WEXITSTATUS(WaitForEnd()), 0);
}

TEST_F(NativeRelay, LeavesNothingRunningWhenItIsKilled) {
  ASSERT_NO_FATAL_FAILURE(Start());
  kill(terminal_->Child(), SIGKILL);
  EXPECT_TRUE(WIFSIGNALED(WaitForEnd()));
}

TEST_F(NativeRelay, TypesALineOfAPipeWheneverTheConsoleWaits) {
  const std::string command =
      std::string("printf 'dir\\nreboot\\nn\\nsystem-view' | timeout 200 ") + ESH_DEVICE_PROGRAM;
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
