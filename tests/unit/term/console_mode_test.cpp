#include "term/console_mode.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "tests/support/console.h"

namespace {

/// An operator has halted the boot's messages; the key that would let them go on is no such key in raw mode.
TEST(ConsoleMode, RawModeLetsHaltedOutputGoOn) {
  Console console([] {
    char halted = '\0';
    (void)!read(STDIN_FILENO, &halted, 1);
    SaveTermiosMode();
    ESH_LINE_SetTermiosMode();
    (void)!write(STDOUT_FILENO, "on", 2);
  });
  console.Type("\x13\n");
  console.Expect("on");
}

/// An operator types on while a tool starts and ends.
TEST(ConsoleMode, NoChangeLosesTypedKeysOrTheWaitForThem) {
  Console console([] {
    fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) | O_NONBLOCK);
    SaveTermiosMode();
    ESH_LINE_SetTermiosMode();
    dprintf(STDOUT_FILENO, (fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK) == 0 ? "blocks:" : "does not block:");
    for (int typed = 0; typed < 4;) ioctl(STDIN_FILENO, FIONREAD, &typed);
    ESH_LINE_RestoreTermiosMode(1);
    ESH_LINE_MaskSpecKey();
    ESH_LINE_SetTermiosMode();
    char keys[10] = "";
    (void)!write(STDOUT_FILENO, keys, static_cast<std::size_t>(read(STDIN_FILENO, keys, sizeof(keys))));
  });
  EXPECT_EQ(console.Expect(":"), "blocks:");
  console.Type("ab\nc");
  EXPECT_EQ(console.ReadToEnd(), "ab\nc");
}

}  // namespace
