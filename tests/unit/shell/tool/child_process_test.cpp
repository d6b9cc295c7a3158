#include "shell/tool/child_process.h"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

#include "term/line_editor.h"
#include "tests/support/console.h"
#include "util/result.h"

namespace {

/// What appears on the console of a shell that does this. The terminal is the editor's, and signals are as in the
/// command loop.
std::string OutputOf(const std::function<void()>& body) {
  Console console([&body] {
    ASSERT_EQ(ESH_LINE_Init(), kSuccess);
    for (const int signal : {SIGHUP, SIGPIPE, SIGTTOU}) std::signal(signal, SIG_IGN);
    body();
  });
  return console.ReadToEnd();
}

/// What the shell says of a tool that has ended.
void Say(std::uint32_t result) { std::puts(result == kSuccess ? "done" : "failed"); }

TEST(Tool, GetsItsWordsAndTellsByItsStatusHowItWent) {
  constexpr std::pair<const char*, const char*> kTools[] = {
      {" /bin/true  ", "done\n"},
      {"   ", "done\n"},
      {"/no/such/tool", "failed\n"},
      {"true", "failed\n"},  // nobody searches for it
      {"/bin/sh -c kill\t-KILL\t$$", "failed\n"},
      {"/usr/bin/printf %s:   -f  'a b'\t*   ", "-f:'a:b'\t*:done\n"},
      {"/usr/bin/printf %s 3 4 5 6 7 8 9", "3456789done\n"},
  };
  for (const auto& [line, output] : kTools) {
    EXPECT_EQ(OutputOf([tool = line] {
                std::fputs("tool:", stdout);
                Say(ESH_ForkProcess(tool, 1, 0));
              }),
              std::string("tool:") + output)
        << line;
  }
}

TEST(Tool, EndsByASignalPassedOnAndWithTheShell) {
  for (void (*const end)(int) : {+[](int) { ESH_Sig2SubProcess(SIGTERM); }, +[](int) { ESH_CloseSubProcess(); }}) {
    EXPECT_EQ(OutputOf([&] {
                std::signal(SIGUSR1, end);
                Say(ESH_ForkProcess("/bin/sh -c kill\t-USR1\t$PPID;exec\tsleep\t30", 0, 1));
                end(0);  // no tool runs, so nobody is hit
                std::printf("%d\n", ESH_IsForkSubProcess());
              }),
              "failed\n0\n");
  }
}

TEST(Tool, IsNotStoppedByKeysTypedWhileItStarts) {
  constexpr int kTools = 500;
  Console console([] {
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
    ASSERT_EQ(console.Expect("."), ".") << i;
    for (int keys = 0; keys < 80; ++keys) console.Type(keys % 2 == 0 ? "\x1a" : "\x13");  // Ctrl+Z, Ctrl+S
  }
}

}  // namespace
