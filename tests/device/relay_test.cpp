#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <utility>

#include "tests/support/console.h"

namespace {

/// The program behind ./run.
using NativeRelay = testing::Test;

TEST_F(NativeRelay, LeavesNothingBehindHoweverItEnds) {
  constexpr std::pair<const char*, void (*)(Console&)> kWays[] = {
      {"Ctrl+\\", [](Console& terminal) { terminal.Type("\x1c"); }},
      {"the launcher is killed", [](Console& terminal) { kill(terminal.Child(), SIGKILL); }},
      {"the terminal is closed",
       [](Console& terminal) { dup2(UniqueFd(open("/dev/null", O_RDWR)).Get(), terminal.ConsoleFd()); }},
  };
  prctl(PR_SET_CHILD_SUBREAPER, 1);  // what loses its parent becomes a child of this process
  for (const auto& [how, leave] : kWays) {
    Console terminal([] { execl(ESH_DEVICE_PROGRAM, ESH_DEVICE_PROGRAM, nullptr); });
    terminal.Expect("<boot>");
    leave(terminal);
    pid_t child = 0;
    for (int tries = 0; tries < 500 && child >= 0; ++tries)
      if ((child = waitpid(-1, nullptr, WNOHANG)) == 0) usleep(20000);
    EXPECT_LT(child, 0) << how << ": something still runs";
  }
}

TEST_F(NativeRelay, TypesALineOfAPipeWheneverTheConsoleWaits) {
  const std::string command =
      std::string("printf 'dir\\nreboot\\nn\\nsystem-view' | timeout 200 ") + ESH_DEVICE_PROGRAM;
  std::FILE* pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): as an operator would pipe
  ASSERT_NE(pipe, nullptr);
  std::string printed;
  for (int byte = 0; (byte = std::getc(pipe)) != EOF;) printed += static_cast<char>(byte);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_NE(printed.find("Directory of flash:"), std::string::npos);
  EXPECT_NE(printed.find("System View"), std::string::npos) << printed;
}

}  // namespace
