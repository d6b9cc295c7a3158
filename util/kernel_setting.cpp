#include "util/kernel_setting.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "shell/result.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr char kSettingsRoot[] = "/proc/sys";
constexpr std::size_t kPathRoom = 128;

enum class CallResult { kDone, kRefused, kNoSuchCall };

#ifdef SYS__sysctl
/// The argument record of the `_sysctl` system call (Linux, removed from the kernel with 5.5).
struct SysctlCall {
  int* name;
  int name_length;
  void* old_value;
  std::size_t* old_length;
  void* new_value;
  std::size_t new_length;
  unsigned long unused[4];
};

CallResult WriteBySystemCall(std::span<const int> path, int value) {
  SysctlCall call{};
  call.name = const_cast<int*>(path.data());  // the kernel reads the name only
  call.name_length = static_cast<int>(path.size());
  call.new_value = &value;
  call.new_length = sizeof(value);
  if (syscall(SYS__sysctl, &call) == 0) {
    return CallResult::kDone;
  }
  // A filter of system calls answers EPERM for a call that it does not know.
  return errno == ENOSYS || errno == EPERM ? CallResult::kNoSuchCall : CallResult::kRefused;
}
#else
CallResult WriteBySystemCall(std::span<const int>, int) { return CallResult::kNoSuchCall; }
#endif

void AppendSettingPath(std::span<const int> path, TextBuilder& file_name) {
  file_name.AppendText(kSettingsRoot);
  for (const int number : path) {
    file_name.Append("/%d", number);
  }
}

}  // namespace

std::uint32_t WriteKernelSetting(std::span<const int> path, int value) {
  const CallResult result = WriteBySystemCall(path, value);
  if (result != CallResult::kNoSuchCall) {
    return result == CallResult::kDone ? kSuccess : ESH_ERR_FAIL;
  }
  FixedText<kPathRoom> file_name;
  AppendSettingPath(path, file_name);
  FixedText<16> text;
  text.Append("%d\n", value);
  const UniqueFd file(open(file_name.Text(), O_WRONLY | O_CLOEXEC));
  if (file_name.Truncated() || !file) {
    return ESH_ERR_FAIL;
  }
  const ssize_t written = write(file.Get(), text.Text(), text.Length());
  return written == static_cast<ssize_t>(text.Length()) ? kSuccess : ESH_ERR_FAIL;
}
