#include "shell/console_attach.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "shell/result.h"
#include "tests/support/private_root.h"
#include "util/unique_handle.h"

namespace {

constexpr char kConfiguration[] = "/etc/pkg/esh/ttyname.conf";
constexpr char kDevice[] = "/tmp/console-15";  // the longest name that is read

/// A terminal that nobody has yet, under a name of 15 characters.
struct ConsoleAttach : PrivateRootTest {
  void SetUp() override {
    static_assert(sizeof(kDevice) == 15 + 1);
    PrivateRootTest::SetUp();
    master_.Reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(grantpt(master_.Get()), 0);
    ASSERT_EQ(unlockpt(master_.Get()), 0);
    std::filesystem::create_symlink(ptsname(master_.Get()), kDevice);
  }

  /// Runs a part of the test in a process of its own, which loses its terminal by it.
  static bool HoldsInChild(const std::function<bool()>& condition) {
    const pid_t child = fork();
    if (child == 0) {
      _exit(condition() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
  }

  /// What the attach leaves when all went well.
  static bool IsAttached() {
    struct stat device {};
    stat(kDevice, &device);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      struct stat standard {};
      if (fstat(fd, &standard) != 0 || standard.st_rdev != device.st_rdev ||
          (fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDWR) {
        return false;
      }
    }
    const bool nothing_else = fcntl(STDERR_FILENO + 1, F_GETFD) == -1;
    const bool owned = device.st_uid == 0 && device.st_gid == 0 && (device.st_mode & 07777) == 0600;
    return nothing_else && owned && tcgetsid(STDIN_FILENO) == getpid();
  }

  UniqueFd master_;
};

TEST_F(ConsoleAttach, TakesTheTerminalThatTheFirstWordNames) {
  const std::string device = kDevice;
  for (const std::string& text : {device, device + "\n", " \n\t" + device + " /dev/null\n", device + "6\n"}) {
    WriteFile(kConfiguration, text);
    EXPECT_TRUE(HoldsInChild([] { return AttachConsole() == kSuccess && IsAttached(); })) << text;
  }
}

TEST_F(ConsoleAttach, KeepsWhatItHasWhenThereIsNoSuchTerminal) {
  const auto fails_and_keeps = [] {
    struct stat before {};
    struct stat after {};
    fstat(STDOUT_FILENO, &before);
    return AttachConsole() == ESH_ERR_FAIL && fstat(STDOUT_FILENO, &after) == 0 && before.st_ino == after.st_ino;
  };
  EXPECT_TRUE(HoldsInChild(fails_and_keeps)) << "no file";
  for (const char* text : {"", " \n\t\n", "/dev/nowhere\n", "/tmp/console-1 5\n"}) {
    WriteFile(kConfiguration, text);
    EXPECT_TRUE(HoldsInChild(fails_and_keeps)) << text;
  }
}

}  // namespace
