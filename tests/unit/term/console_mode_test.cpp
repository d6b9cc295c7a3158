#include "term/console_mode.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "term/key_input.h"
#include "tests/support/console.h"

namespace {

constexpr int kSpecialKeys[] = {VQUIT, VSTART, VSTOP, VSUSP};

/// Settings that are not the usual ones, so that what is put back can be told from what merely looks right.
void MakeItsOwn() {
  termios settings{};
  tcgetattr(STDOUT_FILENO, &settings);
  settings.c_lflag = (settings.c_lflag | ICANON | ECHO | ECHONL | ISIG) & ~static_cast<tcflag_t>(ECHOE);
  settings.c_cc[VQUIT] = 'q' - '`';
  settings.c_cc[VSUSP] = 'u' - '`';
  settings.c_cc[VMIN] = 3;
  settings.c_cc[VTIME] = 7;
  tcsetattr(STDOUT_FILENO, TCSANOW, &settings);
}

/// What a tool leaves behind that was killed in a mode of its own.
void LeaveAMess() {
  termios settings{};
  tcgetattr(STDOUT_FILENO, &settings);
  cfmakeraw(&settings);
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 9;
  settings.c_cc[VSTOP] = 'x';
  tcsetattr(STDOUT_FILENO, TCSANOW, &settings);
}

class ConsoleModeTest : public testing::Test {
 protected:
  /// Runs the steps on a console whose settings were saved, and gives those that the last step leaves.
  template <typename Steps>
  termios After(Steps steps) {
    const Console console({}, [&](const Console::Report& report) {
      MakeItsOwn();
      SaveTermiosMode();
      report("saved");
      steps();
      report("done");
      pause();  // the console's settings end with its last user
    });
    EXPECT_EQ(console.NextReport(), "saved");
    EXPECT_EQ(console.NextReport(), "done");
    return console.Settings();
  }

  const termios saved_ = After([] {});
};

void ExpectSame(const termios& a, const termios& b, const char* why) {
  EXPECT_EQ(a.c_iflag, b.c_iflag) << why;
  EXPECT_EQ(a.c_oflag, b.c_oflag) << why;
  EXPECT_EQ(a.c_cflag, b.c_cflag) << why;
  EXPECT_EQ(a.c_lflag, b.c_lflag) << why;
  EXPECT_EQ(std::memcmp(a.c_cc, b.c_cc, sizeof(a.c_cc)), 0) << why;
}

termios Raw(termios settings) {
  settings.c_lflag = 0;
  settings.c_cc[VMIN] = 0;
  settings.c_cc[VTIME] = 1;
  for (const int key : kSpecialKeys) {
    settings.c_cc[key] = 0;
  }
  return settings;
}

TEST_F(ConsoleModeTest, RawModeTurnsOffEchoEditingAndSignalKeys) {
  ExpectSame(After([] { ESH_LINE_SetTermiosMode(); }), Raw(saved_), "entered");
  ExpectSame(After([] {
               LeaveAMess();
               ESH_LINE_SetTermiosMode();
             }),
             Raw(saved_), "entered after a tool");
}

TEST_F(ConsoleModeTest, RestoreUndoesRawModeAndWhatAToolLeft) {
  termios silent = saved_;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
  for (void (*before)() : {+[] {}, +[] { ESH_LINE_SetTermiosMode(); }, LeaveAMess, ESH_LINE_MaskSpecKey}) {
    ExpectSame(After([before] {
                 before();
                 ESH_LINE_RestoreTermiosMode(1);
               }),
               saved_, "with echo");
    for (const std::uint16_t echo : {std::uint16_t{0}, std::uint16_t{2}}) {
      ExpectSame(After([before, echo] {
                   before();
                   ESH_LINE_RestoreTermiosMode(echo);
                 }),
                 silent, "without echo");
    }
  }
}

TEST(ConsoleMode, RawModeMakesTheConsoleBlock) {
  const Console console({}, [](const Console::Report& report) {
    fcntl(STDERR_FILENO, F_SETFL, fcntl(STDERR_FILENO, F_GETFL) | O_NONBLOCK);
    SaveTermiosMode();
    const int result = ESH_LINE_SetTermiosMode();
    report(std::to_string(result) + ((fcntl(STDERR_FILENO, F_GETFL) & O_NONBLOCK) == 0 ? " blocks" : " does not"));
  });
  EXPECT_EQ(console.NextReport(), "0 blocks");
}

/// An operator types on while a tool starts and ends.
TEST(ConsoleMode, NoChangeOfModeLosesTypedKeys) {
  const Console console({}, [](const Console::Report& report) {
    SaveTermiosMode();
    ESH_LINE_SetTermiosMode();
    report("raw");
    for (int typed = 0; typed < 4;) {
      ioctl(STDIN_FILENO, FIONREAD, &typed);
    }
    ESH_LINE_RestoreTermiosMode(1);
    ESH_LINE_MaskSpecKey();
    ESH_LINE_RestoreTermiosMode(0);
    ESH_LINE_SetTermiosMode();
    std::string keys;
    for (int key = GetChar(1); key != -1; key = GetChar(1)) {
      keys.push_back(static_cast<char>(key));
    }
    report(keys);
  });
  EXPECT_EQ(console.NextReport(), "raw");
  console.Type("ab\nc");
  EXPECT_EQ(console.NextReport(), "ab\nc");
}

}  // namespace
