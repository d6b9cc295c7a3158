#include "tests/device/operator_console.h"

namespace {

/// What the process that was started does when the shell has ended.
class HandOver : public OperatorConsole {};
class NativeHandOver : public HandOver {};

TEST_F(HandOver, TidiesUpAndGivesTheConsoleToTheCommandProgram) {
  options.media.push_back({"usba0:", 1 << 20, ""});
  Replace("/sbin/scmd", "#!/bin/sh\nkill -USR1 1\nexec sleep 60\n");
  BootToPrompt();
  ASSERT_EQ(Run("cat /proc/sys/7/8/1"), "1\n");
  Run("kill -9 " + ShellPid());
  EXPECT_EQ(Outcome(), device::Outcome::kHandedOver);
  EXPECT_EQ(Run("cat /proc/sys/7/8/1"), "0\n");
  EXPECT_EQ(Run("cd /mnt; ls -d slot0*"), "slot0#usba0:\n") << "only the links of flash: and cfa0: go";
  if (!IsArm64())  // its kernel is built without a hotplug helper
    EXPECT_EQ(Board().ReadFile("/proc/sys/kernel/hotplug").value_or(""), std::string("/sbin/hotplug\0", 14));
}

TEST_F(NativeHandOver, EndsQuietlyWithoutACommandProgram) {
  options.files.push_back({"/sbin/scmd", std::nullopt});
  BootToPrompt();
  Run("kill -9 " + ShellPid());
  EXPECT_EQ(Outcome(), device::Outcome::kShellEnded);
  EXPECT_EQ(Board().ShellStatus(), 0);
}

}  // namespace
