#include "term/console_mode.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "term/line_state.h"
#include "tests/support/console.h"

namespace {

using Edit = void (*)(termios& settings);

void Change(Edit edit) {
  termios settings{};
  tcgetattr(STDOUT_FILENO, &settings);
  edit(settings);
  tcsetattr(STDOUT_FILENO, TCSANOW, &settings);
}

/// Settings that are not the usual ones, so that what is put back can be told from what merely looks right.
void MakeUnusual(termios& settings) {
  settings.c_lflag = (settings.c_lflag | ICANON | ECHO | ECHONL | ISIG) & ~static_cast<tcflag_t>(ECHOE);
  settings.c_cc[VQUIT] = 'q' - '`';
  settings.c_cc[VSUSP] = 'u' - '`';
  settings.c_cc[VMIN] = 3;
  settings.c_cc[VTIME] = 7;
}

/// What a tool leaves behind that was killed in a mode of its own.
void LeaveAMess() {
  Change([](termios& settings) {
    cfmakeraw(&settings);
    settings.c_cc[VTIME] = 9;
    settings.c_cc[VSTOP] = 'x';
  });
}

void AfterATool() {
  const ConsoleKept console;
  LeaveAMess();
  console.PutBack();
}

/// The settings that the steps leave on a console whose own settings were saved.
termios After(void (*steps)()) {
  const Console console({}, [steps](const Console::Report& report) {
    Change(MakeUnusual);
    SaveTermiosMode();
    steps();
    report("done");
    pause();  // the console's settings end with its last user
  });
  EXPECT_EQ(console.NextReport(), "done");
  return console.Settings();
}

void AsSaved(termios& /*settings*/) {}

void WithoutEcho(termios& settings) { settings.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL); }

void WithoutSpecialKeys(termios& settings) {
  for (const int key : {VQUIT, VSTART, VSTOP, VSUSP}) settings.c_cc[key] = 0;
}

void Raw(termios& settings) {
  WithoutSpecialKeys(settings);
  settings.c_lflag = 0;
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 1;
}

constexpr struct {
  const char* why;
  void (*steps)();
  Edit expected;
} kModes[] = {
    {"raw", [] { ESH_LINE_SetTermiosMode(); }, Raw},
    {"raw before anything is saved", [] { g_stESh_Line = {}, ESH_LINE_SetTermiosMode(); }, Raw},
    {"restored", [] { ESH_LINE_SetTermiosMode(), ESH_LINE_RestoreTermiosMode(1); }, AsSaved},
    {"without echo", [] { ESH_LINE_SetTermiosMode(), ESH_LINE_RestoreTermiosMode(0); }, WithoutEcho},
    {"without echo by any other value", [] { ESH_LINE_SetTermiosMode(), ESH_LINE_RestoreTermiosMode(2); }, WithoutEcho},
    {"no special keys for tools", ESH_LINE_MaskSpecKey, WithoutSpecialKeys},
    {"for a tool", [] { ESH_LINE_SetTermiosMode(), SetToolMode(1); }, WithoutSpecialKeys},
    {"after a tool", AfterATool, AsSaved},
};

TEST(ConsoleMode, IsAsItsNextUserNeedsIt) {
  for (const auto& c : kModes) {
    termios expected = After([] {});
    c.expected(expected);
    EXPECT_EQ(ModesOf(After(c.steps)), ModesOf(expected)) << c.why;
  }
}

/// An operator has halted the boot's messages; the key that would let them go on is no such key in raw mode.
TEST(ConsoleMode, RawModeLetsHaltedOutputGoOn) {
  const Console console({}, [](const Console::Report&) {
    char halted = '\0';
    (void)!read(STDIN_FILENO, &halted, 1);
    SaveTermiosMode();
    ESH_LINE_SetTermiosMode();
    (void)!write(STDOUT_FILENO, "on", 2);
  });
  console.Type("\x13\n");
  EXPECT_TRUE(console.ReadUntil("on").ends_with("on"));
}

/// An operator types on while a tool starts and ends.
TEST(ConsoleMode, NoChangeLosesTypedKeysOrTheWaitForThem) {
  const Console console({}, [](const Console::Report& report) {
    fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) | O_NONBLOCK);
    SaveTermiosMode();
    ESH_LINE_SetTermiosMode();
    report((fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK) == 0 ? "blocks" : "does not block");
    for (int typed = 0; typed < 4;) ioctl(STDIN_FILENO, FIONREAD, &typed);
    ESH_LINE_RestoreTermiosMode(1);
    ESH_LINE_MaskSpecKey();
    ESH_LINE_SetTermiosMode();
    char keys[10] = "";
    report({keys, static_cast<std::size_t>(read(STDIN_FILENO, keys, sizeof(keys)))});
  });
  EXPECT_EQ(console.NextReport(), "blocks");
  console.Type("ab\nc");
  EXPECT_EQ(console.NextReport(), "ab\nc");
}

}  // namespace
