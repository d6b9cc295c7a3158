#include "term/key_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/support/console.h"
#include "tests/support/scripted_stdio.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/fixed_text.h"

namespace {

int g_reads_of_stdin = 0;

}  // namespace

/// Stands before the library's own: how often the keyboard is asked shows whether somebody spins.
extern "C" ssize_t read(int fd, void* buf, size_t nbytes) {
  g_reads_of_stdin += fd == STDIN_FILENO ? 1 : 0;
  return syscall(SYS_read, fd, buf, nbytes);
}

namespace {

TEST(GetChar, EveryKindOfNothingIsOneTry) {
  {
    ScriptedStdio stdio;
    g_reads_of_stdin = 0;
    EXPECT_EQ(GetChar(3), -1);
    EXPECT_EQ(g_reads_of_stdin, 3) << "end of file";
  }
  {
    ScriptedStdio stdio(std::string("\0\0a", 3));
    EXPECT_EQ(GetChar(2), -1) << "NUL bytes";
    EXPECT_EQ(GetChar(2), 'a');
  }
  {
    ScriptedStdio stdio;
    close(STDIN_FILENO);
    g_reads_of_stdin = 0;
    EXPECT_EQ(GetChar(2), -1);
    EXPECT_EQ(g_reads_of_stdin, 2) << "errors";
  }
}

/// A console that hung up answers every read at once. It is asked ten times a second, and heard when it is back.
TEST(GetChar, DoesNotSpinWhileTheConsoleIsGone) {
  char directory[] = "/tmp/esh-key-input-XXXXXX";
  ASSERT_NE(mkdtemp(directory), nullptr);
  const std::string fifo = std::string(directory) + "/console";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const UniqueFd console(open(fifo.c_str(), O_RDONLY | O_NONBLOCK));
  fcntl(console.Get(), F_SETFL, 0);
  {
    const ScriptedStdio stdio;
    dup2(console.Get(), STDIN_FILENO);
    g_reads_of_stdin = 0;
    std::thread operator_back([&fifo] {
      std::this_thread::sleep_for(std::chrono::milliseconds(400));
      const UniqueFd keyboard(open(fifo.c_str(), O_WRONLY));
      EXPECT_EQ(write(keyboard.Get(), "x", 1), 1);
    });
    EXPECT_EQ(GetChar(0), 'x');
    operator_back.join();
    EXPECT_LT(g_reads_of_stdin, 1000);
  }
  unlink(fifo.c_str());
  rmdir(directory);
}

struct RedrawCase {
  const char* text;
  std::uint64_t cursor;
  const char* output;
  const char* why;
  std::uint32_t mode;
  char answer;
};

constexpr RedrawCase kRedraws[] = {
    {"display", 3, "\r\n<boot>display\033[4D", "a command line with the cursor inside", 0, 0},
    {"display", 7, "\r\n<boot>display", "a command line with the cursor at its end", 0, 0},
    {"", 0, "", "nothing typed, nothing to draw", 0, 0},
    {"joe", 3, "\r\n<boot>joe", "a name", 1, 0},
    {"joe", 1, "\r\n<boot>***\033[2D", "a password", 2, 0},
    {"", 0, "\r\n[Y/N]:", "a question", 3, 0},
    {"old", 0, "\r\n[Y/N]:y", "a question answered by yes", 3, 'y'},
    {"", 0, "\r\n[Y/N]:n", "a question answered by no", 3, 'n'},
};

TEST(Redraw, ShowsTheInputAgainAfterSomebodyElseWrote) {
  for (const RedrawCase& c : kRedraws) {
    ScriptedEditor editor("kl");
    ESH_SetPrompt("<boot>");
    CopyBounded(g_stESh_Line.pcBuf, kLineRoom, c.text);
    g_stESh_Line.ulLen = std::strlen(c.text);
    g_stESh_Line.ulCursor = c.cursor;
    g_stESh_Line.ulMode = c.mode;
    g_stESh_Line.usConfirmChosen = c.answer == 0 ? 0 : 1;
    g_stESh_Line.usConfirmYes = c.answer == 'y' ? 1 : 0;
    g_bESh_SynInput = 1;
    EXPECT_EQ(GetChar(1), 'k') << c.why;
    EXPECT_EQ(g_bESh_SynInput, 0) << c.why;
    EXPECT_EQ(GetChar(1), 'l') << c.why;
    EXPECT_EQ(editor.TakeOutput(), c.output) << c.why;
  }
}

TEST(Redraw, InterruptsARead) {
  const Console console({}, [](const Console::Report& report) {
    std::signal(SIGUSR1, [](int) { g_bESh_SynInput = 1; });
    (void)ESH_LINE_Init();
    ESH_SetPrompt("password:");
    report(ESH_LINE_GetLine(ESH_LINE_MODE_MASKED, 15));
  });
  EXPECT_EQ(console.ReadUntil(":"), "password:");
  console.Type("secret\002");
  EXPECT_EQ(console.ReadUntil("\033[1D"), "******\033[1D");
  kill(console.Child(), SIGUSR1);
  EXPECT_EQ(console.ReadUntil("\033[1D"), "\r\r\npassword:******\033[1D");
  console.Type("s\n");
  EXPECT_EQ(console.NextReport(), "secrest");
}

}  // namespace
