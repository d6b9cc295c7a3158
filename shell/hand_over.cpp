#include "shell/hand_over.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "util/kernel_setting.h"
#include "util/unique_handle.h"

namespace {

constexpr int kConsoleSwitch[] = {7, 8, 1};
/// The links of these two media go, and of no others.
constexpr const char* kRemovedLinks[] = {"/mnt/slot0#flash:", "/mnt/slot0#cfa0:"};
constexpr char kHotplugSetting[] = "/proc/sys/kernel/hotplug";
constexpr char kHotplugHelper[] = "/sbin/hotplug";
constexpr char kCommandProgram[] = "/sbin/scmd";

void RestoreHotplugHelper() {
  const UniqueFd setting(open(kHotplugSetting, O_WRONLY | O_CLOEXEC));
  if (setting) {
    // The terminating NUL is part of what is written. A kernel without the setting needs no helper.
    (void)!write(setting.Get(), kHotplugHelper, sizeof(kHotplugHelper));
  }
}

}  // namespace

void SetTtySwich(std::int32_t on) { (void)WriteKernelSetting(kConsoleSwitch, on); }  // a kernel without it needs none

void WaitAndHandOver(pid_t shell) {
  (void)TEMP_FAILURE_RETRY(waitpid(shell, nullptr, 0));
  SetTtySwich(0);
  for (const char* link : kRemovedLinks) (void)unlink(link);  // an absent link is what is wanted
  RestoreHotplugHelper();
  execl(kCommandProgram, "scmd", nullptr);
}
