#include "shell/tool/child_process.h"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <utility>

#include "term/line_editor.h"
#include "tests/support/console.h"
#include "util/result.h"

namespace {

TEST(Tool, GetsItsWordsAndTellsByItsStatusHowItWent) {
  constexpr std::pair<const char*, const char*> kTools[] = {
      {" /bin/true  ", "done"},
      {"   ", "done"},
      {"/no/such/tool", "failed"},
      {"true", "failed"},  // nobody searches for it
      {"/bin/sh -c kill\t-KILL\t$$", "failed"},
      {"/bin/sh -c kill\t-USR1\t$PPID;exec\tsleep\t30", "failed"},  // ended by the signal that is passed on
      {"/usr/bin/printf %s:   -f  'a b'\t*   ", "-f:'a:b'\t*:done"},
      {"/usr/bin/printf %s 3 4 5 6 7 8 9", "3456789done"},
  };
  for (const auto& [line, output] : kTools) {
    Console console([tool = line] {
      ASSERT_EQ(ESH_LINE_Init(), kSuccess);
      std::signal(SIGTTOU, SIG_IGN);  // as in the command loop
      std::signal(SIGUSR1, [](int) { ESH_Sig2SubProcess(SIGTERM); });
      std::fputs("tool:", stdout);
      std::puts(ESH_ForkProcess(tool, 1, 0) == kSuccess ? "done" : "failed");
    });
    EXPECT_EQ(console.Expect(output + std::string("\r\n")), "tool:" + std::string(output) + "\n") << line;
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
