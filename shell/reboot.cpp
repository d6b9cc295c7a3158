#include "shell/reboot.h"

#include <unistd.h>

#include <cstdio>

#include "shell/command/command_table.h"
#include "shell/tool/tool_line.h"
#include "term/prompts.h"
#include "util/result.h"

namespace {

constexpr char kQuestion[] = "This Command will reboot the device. Continue? [Y/N]:";
constexpr char kBusybox[] = "/bin/busybox";
constexpr char kRebootTool[] = "/bin/reboot";
constexpr char kLinkReboot[] = "/bin/ln -s /bin/busybox /bin/reboot";
constexpr char kReboot[] = "/bin/reboot -f";

constexpr CommandRow kRebootCommand[] = {
    {ESH_ProcReboot, kUserView, {Word("reboot", "Reboot system")}},
};
static_assert(WellFormed(kRebootCommand));

}  // namespace

void ESH_Reboot_Init() { RegisterCommands(kRebootCommand); }

std::uint32_t ESH_ProcReboot() {
  std::fputs(kQuestion, stdout);
  return IsConfirmed() ? ESH_Reboot() : kSuccess;
}

std::uint32_t ESH_Reboot() {
  (void)RunTool(kLinkReboot);  // fails where the link exists already, which is what is wanted
  return RunTool(kReboot);
}

void BecomeReboot() {
  (void)!symlink(kBusybox, kRebootTool);
  execl(kRebootTool, kRebootTool, "-f", nullptr);
}
