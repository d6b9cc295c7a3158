#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "tests/support/console.h"

namespace {

/// The program behind ./run.
using NativeRelay = testing::Test;

TEST_F(NativeRelay, GivesTheTerminalBackWhenASignalEndsIt) {
  Console terminal([] {
    // With modes that nobody would take for the usual ones.
    execl("/bin/sh", "sh", "-c", "stty intr ^X -echoe; echo set; exec \"$0\"", ESH_DEVICE_PROGRAM, nullptr);
  });
  terminal.Expect("set");
  termios before{};
  tcgetattr(terminal.ConsoleFd(), &before);
  terminal.Expect("<boot>");
  kill(terminal.Child(), SIGTERM);
  (void)terminal.ReadToEnd();
  termios after{};
  tcgetattr(terminal.ConsoleFd(), &after);
  EXPECT_EQ(std::memcmp(&after, &before, sizeof(after)), 0);
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
