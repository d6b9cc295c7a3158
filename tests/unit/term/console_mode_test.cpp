#include "term/console_mode.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "tests/support/console.h"

namespace {

/// An operator has halted the boot's messages; the key that would let them go on is no such key in raw mode.
TEST(ConsoleMode, RawModeLetsHaltedOutputGoOnAndWaitsForKeys) {
  Console console([] {
    char halted = '\0';
    (void)!read(STDIN_FILENO, &halted, 1);
    fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) | O_NONBLOCK);
    ESH_LINE_SetTermiosMode();
    dprintf(STDOUT_FILENO, (fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK) == 0 ? "blocks" : "does not block");
  });
  console.Type("\x13\n");
  console.Expect("blocks");
}

}  // namespace
