#include "shell/child_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "shell/result.h"
#include "term/line_editor.h"
#include "tests/support/console.h"

namespace {

/// A shell script that the tests run as a tool: "/bin/sh <path>".
class Script {
 public:
  explicit Script(const std::string& text) : path_(testing::TempDir() + "tool." + std::to_string(getpid())) {
    std::ofstream(path_) << text << "\n";
  }
  ~Script() { std::filesystem::remove(path_); }
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;
  [[nodiscard]] std::string Line() const { return "/bin/sh " + path_; }

 private:
  std::string path_;
};

constexpr std::uint16_t kFlags[] = {0, 1, 2};  // no, yes, and what is neither

std::uint32_t RunTool(const std::string& line, std::uint16_t ignoreInt = 0, std::uint16_t echo = 1) {
  return ESH_ForkProcess(line.c_str(), ignoreInt, echo);
}

/// What the shell says of a tool that has ended.
void Say(std::uint32_t result) { std::printf("%s\n", result == kSuccess ? "done" : "failed"); }

/// A shell on a console: the terminal is the editor's, and signals are as in the command loop.
class Shell : public Console {
 public:
  explicit Shell(const std::function<void()>& body)
      : Console({}, [&body](const Report&) {
          ASSERT_EQ(ESH_LINE_Init(), kSuccess);
          for (const int signal : {SIGHUP, SIGPIPE, SIGTTOU}) {
            std::signal(signal, SIG_IGN);
          }
          body();
        }) {}
};

std::string OutputOf(const std::function<void()>& body) { return Shell(body).ReadToEnd(); }

TEST(Tool, SucceedsOnlyWhenItExitsWithStatusZero) {
  for (const char* line : {"/bin/true", " /bin/true  ", "", "   ", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(OutputOf([&] { Say(ESH_ForkProcess(line, 1, 0)); }), "done\r\n") << (line == nullptr ? "NULL" : line);
  }
  for (const char* line : {"/bin/false", "/no/such/tool", "/bin", "true", "/bin/true/", "'/bin/true'"}) {
    EXPECT_EQ(OutputOf([&] { Say(ESH_ForkProcess(line, 1, 0)); }), "failed\r\n") << line;
  }
  const Script killed("kill -KILL $$");
  EXPECT_EQ(OutputOf([&] { Say(RunTool(killed.Line())); }), "failed\r\n");
}

TEST(Tool, GetsItsWordsWithoutQuotingAndWithoutEmptyOnes) {
  const Script script(R"(printf '%s:' "$#" "$@")");
  EXPECT_EQ(OutputOf([&] { RunTool(script.Line() + "   -f  'a b'\t*   "); }), "3:-f:'a:b'\t*:");
  EXPECT_EQ(OutputOf([&] { RunTool(" " + script.Line()); }), "0:");
  EXPECT_EQ(OutputOf([&] { RunTool(script.Line() + " 3 4 5 6 7 8"); }), "6:3:4:5:6:7:8:") << "eight words in all";
  EXPECT_EQ(OutputOf([&] { RunTool(script.Line() + " 3 4 5 6 7 8 9"); }), "7:3:4:5:6:7:8:9:");
}

TEST(Tool, FindsItsSignalsAsIfNoShellHadChangedThem) {
  for (const std::uint16_t ignore_int : kFlags) {
    const std::string output = OutputOf([&] { RunTool("/bin/grep SigIgn /proc/self/status", ignore_int); });
    const auto ignored = std::strtoull(output.substr(output.find(':') + 1).c_str(), nullptr, 16);
    const auto is_ignored = [&](int signal) { return (ignored >> (signal - 1) & 1) != 0; };
    EXPECT_EQ(is_ignored(SIGINT), ignore_int == 1) << ignore_int;
    for (const int signal : {SIGTERM, SIGHUP, SIGPIPE, SIGTTOU}) {
      EXPECT_FALSE(is_ignored(signal)) << output;
    }
  }
}

TEST(Tool, GetsSignalsThatTheShellPassesOn) {
  // Again and again: the shell may note the process later than the tool starts.
  const Script script("for i in $(seq 300); do kill -USR1 $PPID; sleep 0.1; done");
  const std::string output = OutputOf([&] {
    std::signal(SIGUSR1, [](int) { ESH_Sig2SubProcess(SIGTERM); });
    Say(RunTool(script.Line()));
    ESH_Sig2SubProcess(SIGTERM);  // no tool runs, so nobody is hit
    std::printf("%d\n", ESH_IsForkSubProcess());
  });
  EXPECT_EQ(output, "failed\r\n0\r\n");
}

TEST(Tool, IsEndedWithItsGroupWhenTheShellEnds) {
  const std::string output = OutputOf([] {
    g_EShSubPid = fork();
    if (g_EShSubPid == 0) {
      setpgid(0, 0);
      for (;;) {
        pause();
      }
    }
    const pid_t tool = g_EShSubPid;
    setpgid(tool, tool);
    g_iShellGid = getpgrp();
    SetPgtp(tool);
    ESH_CloseSubProcess();
    int status = 0;
    waitpid(tool, &status, 0);
    std::printf("%d %d %d\n", WIFSIGNALED(status), tcgetpgrp(STDERR_FILENO) == getpgrp(), g_EShSubPid);
  });
  EXPECT_EQ(output, "1 1 -1\r\n");
}

}  // namespace
