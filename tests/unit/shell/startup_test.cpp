#include "shell/startup.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "shell/hand_over.h"
#include "shell/ip_stack.h"
#include "tests/support/private_root.h"

namespace {

namespace fs = std::filesystem;

struct Startup : PrivateRootTest {};

TEST_F(Startup, FindsTheAddOnAmongTheLoadedModules) {
  struct ModuleCase {
    const char* modules;
    int loaded;
  };
  constexpr ModuleCase kCases[] = {
      {"addon 16384 0 - Live 0x0\n", 1},
      {"fat 1 0\naddon 16384 0", 1},
      {"addons 16384 0\n", 0},
      {"fat 1 1 addon\n", 0},
      {"ADDON 1 0\n", 0},
      {"", 0},
  };
  EXPECT_EQ(HasLoadedKo(), 0) << "no such file";
  for (const ModuleCase& c : kCases) {
    WriteFile("/proc/modules", c.modules);
    EXPECT_EQ(HasLoadedKo(), c.loaded) << c.modules;
  }
}

TEST_F(Startup, LooksForTheIpStackAfreshAtEveryCall) {
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
  WriteFile("/lib/modules/ipstack.ko", "");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 1);
  fs::remove("/lib/modules/ipstack.ko");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
}

/// Lets the waiting process see a shell that has ended. @return the exit status of what it became.
int HandOver() {
  const pid_t waiting = fork();
  if (waiting == 0) {
    const pid_t shell = fork();
    if (shell == 0) {
      _exit(7);
    }
    WaitAndHandOver(shell);
    _exit(42);
  }
  int status = -1;
  waitpid(waiting, &status, 0);
  return WEXITSTATUS(status);
}

TEST_F(Startup, TidiesUpAndBecomesTheCommandProgramWhenTheShellEnds) {
  for (const char* medium : {"flash:", "cfa0:", "usba0:"}) {
    AddMedium(medium);
  }
  WriteFile("/proc/sys/7/8/1", "1\n");
  WriteFile("/proc/sys/kernel/hotplug", std::string(14, 'x'));
  WriteFile("/sbin/scmd", "#!/bin/sh\ntest \"$#\" -eq 0 && exit 3\n");
  fs::permissions("/sbin/scmd", fs::perms::owner_all);
  EXPECT_EQ(HandOver(), 3);
  EXPECT_FALSE(fs::is_symlink("/mnt/slot0#flash:"));
  EXPECT_FALSE(fs::is_symlink("/mnt/slot0#cfa0:"));
  EXPECT_TRUE(fs::is_symlink("/mnt/slot0#usba0:")) << "only these two go";
  EXPECT_EQ(ReadFile("/proc/sys/7/8/1"), "0\n");
  EXPECT_EQ(ReadFile("/proc/sys/kernel/hotplug"), std::string("/sbin/hotplug\0", 14)) << "with its NUL";
}

TEST_F(Startup, DoesWithoutWhatIsMissingWhenTheShellEnds) {
  EXPECT_EQ(HandOver(), 42) << "no command program to become";
  EXPECT_FALSE(fs::exists("/proc/sys/kernel/hotplug")) << "a setting is written, never made";
}

TEST_F(Startup, CtrlCHarmsNobodyWhenNoToolRuns) { ESH_SigInt(2); }

}  // namespace
