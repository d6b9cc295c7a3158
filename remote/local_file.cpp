#include "remote/local_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fs/file_messages.h"
#include "fs/named_file.h"
#include "fs/path.h"
#include "fs/user_file.h"
#include "shell/command/parameter.h"
#include "term/prompts.h"
#include "util/new_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kCannotOpen[] = "%s: can't open '%s': No such file or directory\r\n";
constexpr char kTooLong[] = "Local file %s is too long.\r\n";

std::uint32_t CannotOpen(const char* tool) {
  std::printf(kCannotOpen, tool, g_szLocalFile);
  return ESH_ERR_FAIL;
}

/// How the operator knows a full name.
const char* DisplayName(const TargetName& target) { return target.Text() + kMediaPrefix.size(); }

/// From the last "/" on, that one included; a "/" at the end is dropped first.
std::string_view LastPart(std::string_view remote) {
  if (remote.ends_with('/')) remote.remove_suffix(1);
  const std::size_t slash = remote.rfind('/');
  return slash == std::string_view::npos ? remote : remote.substr(slash);
}

/// The tools write through a link, one that leads nowhere too, and to a device.
bool IsWrittenOnMedium(const char* target) {
  struct stat status {};
  if (stat(target, &status) == 0 && (S_ISBLK(status.st_mode) || S_ISCHR(status.st_mode))) return false;
  if (lstat(target, &status) != 0 || !S_ISLNK(status.st_mode)) return LiesOnMedium(target);
  const UniqueText real(realpath(target, nullptr));
  return real != nullptr && LiesOnMedium(real.get());
}

}  // namespace

Refusal CheckLocalFile(const char* tool) {
  const std::string_view local(g_szLocalFile);
  const std::size_t slash = local.rfind('/');
  if (slash == std::string_view::npos) return std::nullopt;
  FixedText<kNameRoom> directory;
  directory.AppendText(kMediaPrefix);
  directory.AppendText(local.substr(0, slash));
  return IsDirectory(directory.Text()) ? Refusal() : CannotOpen(tool);
}

Refusal GetFullLocalName(const char* local, const char* remote, TargetName& target) {
  target.AppendText(kMediaPrefix);
  target.AppendText(local);
  if (IsDirectory(target.Text())) {
    target.AppendText(target.View().ends_with('/') ? "" : "/");
    target.AppendText(LastPart(remote));  // its own "/" may double the one before, which is harmless
  }
  if (!target.Truncated()) return std::nullopt;
  std::printf(kTooLong, DisplayName(target));
  return ESH_ERR_FAIL;
}

Refusal CheckTarget(const char* tool, const TargetName& target) {
  const bool is_named_on_medium = std::string_view(g_szLocalFile).find(':') != std::string_view::npos;
  return is_named_on_medium && !IsWrittenOnMedium(target.Text()) ? CannotOpen(tool) : Refusal();
}

bool IsLineGetConfirm(const TargetName& target) {
  if (!Exists(target.Text())) return true;
  std::printf(kOverwriteQuestion, DisplayName(target));
  return IsConfirmed();
}

Refusal ChooseTarget(const char* tool, TargetName& target) {
  if (const Refusal refusal = CheckLocalFile(tool)) return refusal;
  if (const Refusal refusal = GetFullLocalName(g_szLocalFile, g_szRemoteFile, target)) return refusal;
  if (const Refusal refusal = CheckTarget(tool, target)) return refusal;
  return IsLineGetConfirm(target) ? Refusal() : kSuccess;
}

std::uint32_t Stored(std::uint32_t result, const TargetName& target) {
  SyncMediumOfEntry(target.Text());  // a part, too, or what is no longer there
  return result;
}

Refusal GetLocalFileFullName(const char* tool, char (&full)[kNameRoom]) {
  if (ESH_InputName2FullValidName(g_szLocalFile, 1, sizeof(full), full) != kSuccess ||
      ESH_IsUserManipulatedFile(full) != kSuccess) {
    std::puts(kWrongName);
    return kSuccess;  // unlike a file that does not exist
  }
  return Exists(full) ? Refusal() : CannotOpen(tool);
}
