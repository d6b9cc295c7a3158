#include "util/kernel_setting.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kSettingsRoot[] = "/proc/sys";
constexpr std::size_t kPathRoom = 128;
constexpr std::size_t kDottedRoom = 4096;

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

CallResult CallSysctl(std::span<const int> path, SysctlCall& call) {
  call.name = const_cast<int*>(path.data());  // the kernel reads the name only
  call.name_length = static_cast<int>(path.size());
  if (syscall(SYS__sysctl, &call) == 0) return CallResult::kDone;
  // A filter of system calls answers EPERM for a call that it does not know.
  return errno == ENOSYS || errno == EPERM ? CallResult::kNoSuchCall : CallResult::kRefused;
}

CallResult WriteBySystemCall(std::span<const int> path, int value) {
  SysctlCall call{};
  call.new_value = &value;
  call.new_length = sizeof(value);
  return CallSysctl(path, call);
}

/// @param length in: room of `value` in bytes; out: bytes read.
CallResult ReadBySystemCall(std::span<const int> path, std::size_t& length, void* value) {
  SysctlCall call{};
  call.old_value = value;
  call.old_length = &length;
  return CallSysctl(path, call);
}
#else
CallResult WriteBySystemCall(std::span<const int>, int) { return CallResult::kNoSuchCall; }
CallResult ReadBySystemCall(std::span<const int>, std::size_t&, void*) { return CallResult::kNoSuchCall; }
#endif

/// Opens the file of a setting. @return an owner of nothing when there is none.
UniqueFd OpenSetting(std::span<const int> path, int flags) {
  FixedText<kPathRoom> file_name;
  file_name.AppendText(kSettingsRoot);
  for (const int number : path) file_name.Append("/%d", number);
  return file_name.Truncated() ? UniqueFd() : UniqueFd(open(file_name.Text(), flags | O_CLOEXEC));
}

/// Reads the file of a setting, without its line end, cut to `size` - 1 bytes.
std::uint32_t ReadSettingFile(std::span<const int> path, std::size_t size, char* text) {
  text[0] = '\0';
  const ssize_t length = read(OpenSetting(path, O_RDONLY).Get(), text, size - 1);  // of none it reads nothing
  if (length < 0) return ESH_ERR_FAIL;
  const bool has_line_end = length > 0 && text[length - 1] == '\n';
  text[has_line_end ? length - 1 : length] = '\0';
  return kSuccess;
}

/// @param count in: room of `numbers`; out: how many there are.
bool ReadDotted(const char* text, std::size_t& count, std::uint64_t* numbers) {
  const char* const end = text + std::strlen(text);
  for (std::size_t i = 0;;) {
    const auto [rest, error] = std::from_chars(text, end, numbers[i]);
    if (error != std::errc{} || (rest != end && *rest != '.')) return false;
    if (++i == count || rest == end) {
      count = i;
      return true;
    }
    text = rest + 1;
  }
}

}  // namespace

std::uint32_t WriteKernelSetting(std::span<const int> path, int value) {
  const CallResult result = WriteBySystemCall(path, value);
  if (result != CallResult::kNoSuchCall) return result == CallResult::kDone ? kSuccess : ESH_ERR_FAIL;
  return dprintf(OpenSetting(path, O_WRONLY).Get(), "%d\n", value) < 0 ? ESH_ERR_FAIL : kSuccess;
}

std::uint32_t ReadKernelText(std::span<const int> path, std::size_t size, char* text) {
  std::size_t length = size - 1;
  const CallResult result = ReadBySystemCall(path, length, text);
  if (result == CallResult::kNoSuchCall) return ReadSettingFile(path, size, text);
  text[result == CallResult::kDone ? std::min(length, size - 1) : 0] = '\0';
  return result == CallResult::kDone ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t ReadKernelNumbers(std::span<const int> path, std::size_t& count, std::uint64_t* numbers) {
  std::size_t length = count * sizeof(*numbers);
  const CallResult result = ReadBySystemCall(path, length, numbers);
  if (result == CallResult::kNoSuchCall) {
    char text[kDottedRoom];
    const bool read = ReadSettingFile(path, sizeof(text), text) == kSuccess && ReadDotted(text, count, numbers);
    count = read ? count : 0;
    return read ? kSuccess : ESH_ERR_FAIL;
  }
  count = result == CallResult::kDone ? length / sizeof(*numbers) : 0;
  return count > 0 ? kSuccess : ESH_ERR_FAIL;
}
