#include "shell/tool/child_process.h"

#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

#include "term/line_editor.h"
#include "tests/support/console.h"
#include "util/result.h"

namespace {

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
