#include "shell/tool/child_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "term/line_editor.h"
#include "tests/support/console.h"
#include "util/result.h"

namespace {

/// What appears on the console of a shell that does this. The terminal is the editor's, and signals are as in the
/// command loop.
std::string OutputOf(const std::function<void()>& body) {
  const Console console({}, [&body](const Console::Report&) {
    ASSERT_EQ(ESH_LINE_Init(), kSuccess);
    for (const int signal : {SIGHUP, SIGPIPE, SIGTTOU}) std::signal(signal, SIG_IGN);
    body();
  });
  return console.ReadToEnd();
}

/// The line of a tool that runs a script. Its blanks become tabs, which do not part the words of a line.
std::string ScriptLine(std::string script) {
  std::replace(script.begin(), script.end(), ' ', '\t');
  return "/bin/sh -c " + script;
}

/// What the shell says of a tool that has ended.
void Say(std::uint32_t result) { std::puts(result == kSuccess ? "done" : "failed"); }

TEST(Tool, GetsItsWordsAndTellsByItsStatusHowItWent) {
  const struct {
    const char* why;
    std::string line;
    const char* output;
  } kTools[] = {
      {"success", " /bin/true  ", "done\r\n"},
      {"nothing to do", "   ", "done\r\n"},
      {"failure", "/bin/false", "failed\r\n"},
      {"no such tool", "/no/such/tool", "failed\r\n"},
      {"no search for a tool", "true", "failed\r\n"},
      {"killed", ScriptLine("kill -KILL $$"), "failed\r\n"},
      {"no quoting, no empty words", "/usr/bin/printf %s:   -f  'a b'\t*   ", "-f:'a:b'\t*:done\r\n"},
      {"eight words in all", "/usr/bin/printf %s 3 4 5 6 7 8", "345678done\r\n"},
      {"and nine", "/usr/bin/printf %s 3 4 5 6 7 8 9", "3456789done\r\n"},
  };
  for (const auto& c : kTools) {
    EXPECT_EQ(OutputOf([&] {
                std::fputs("tool:", stdout);
                Say(ESH_ForkProcess(c.line.c_str(), 1, 0));
              }),
              std::string("tool:") + c.output)
        << c.why;
  }
  EXPECT_EQ(OutputOf([] { Say(ESH_ForkProcess(nullptr, 1, 0)); }), "done\r\n");
}

TEST(Tool, FindsItsSignalsAsIfNoShellHadChangedThem) {
  for (const std::uint16_t ignore_int : {std::uint16_t{0}, std::uint16_t{1}, std::uint16_t{2}}) {
    const std::string output = OutputOf([&] { ESH_ForkProcess("/bin/grep SigIgn /proc/self/status", ignore_int, 1); });
    const auto ignored = std::strtoull(output.substr(output.find(':') + 1).c_str(), nullptr, 16);
    const auto is_ignored = [&](int signal) { return (ignored >> (signal - 1) & 1) != 0; };
    EXPECT_EQ(is_ignored(SIGINT), ignore_int == 1) << ignore_int;
    for (const int signal : {SIGTERM, SIGHUP, SIGPIPE, SIGTTOU}) EXPECT_FALSE(is_ignored(signal)) << output;
  }
}

TEST(Tool, GetsSignalsThatTheShellPassesOn) {
  const std::string output = OutputOf([&] {
    std::signal(SIGUSR1, [](int) { ESH_Sig2SubProcess(SIGTERM); });
    const std::string line = ScriptLine("kill -USR1 $PPID; exec sleep 30");
    Say(ESH_ForkProcess(line.c_str(), 0, 1));
    ESH_Sig2SubProcess(SIGTERM);  // no tool runs, so nobody is hit
    std::printf("%d\n", ESH_IsForkSubProcess());
  });
  EXPECT_EQ(output, "failed\r\n0\r\n");
}

TEST(Tool, IsNotStoppedByKeysTypedWhileItStarts) {
  constexpr int kTools = 500;
  const Console console({}, [](const Console::Report&) {
    ASSERT_EQ(ESH_LINE_Init(), kSuccess);
    for (int i = 0; i < kTools; ++i) {
      std::putchar('.');
      ESH_ForkProcess("/bin/true", 1, 0);
      tcflush(STDIN_FILENO, TCIFLUSH);
    }
    for (int i = 0; i < 60000; ++i) {  // a slow typist's last keys must still find somebody who takes them
      tcflush(STDIN_FILENO, TCIFLUSH);
      usleep(1000);
    }
  });
  for (int i = 0; i < kTools; ++i) {
    ASSERT_EQ(console.Read(1), ".") << i;
    for (int keys = 0; keys < 80; ++keys) console.Type(keys % 2 == 0 ? "\x1a" : "\x13");  // Ctrl+Z, Ctrl+S
  }
}

TEST(Tool, IsEndedWithItsGroupWhenTheShellEnds) {
  const std::string output = OutputOf([] {
    g_iShellGid = getpgrp();
    g_EShSubPid = fork();
    const pid_t tool = g_EShSubPid;
    setpgid(tool, tool);
    if (tool == 0) {
      pause();
      _exit(EXIT_SUCCESS);
    }
    SetPgtp(tool);
    ESH_CloseSubProcess();
    int status = 0;
    waitpid(tool, &status, 0);
    std::printf("%d %d %d\n", WIFSIGNALED(status), tcgetpgrp(STDERR_FILENO) == getpgrp(), g_EShSubPid);
  });
  EXPECT_EQ(output, "1 1 -1\r\n");
}

}  // namespace
