#include "fs/path.h"

#include <cstring>
#include <string_view>

#include "fs/names/dot_elimination.h"
#include "fs/names/name_rules.h"
#include "fs/working_directory.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

/// A working directory, a slash and a name.
using JoinedName = FixedText<2 * kNameRoom>;

bool HoldsDevice(const char* name) { return std::strchr(name, ':') != nullptr; }

/// A relative name behind the working directory; an absolute one as it is.
std::uint32_t JoinWorkingDirectory(const char* name, JoinedName& joined) {
  if (name[0] != '/') {
    char directory[kNameRoom];
    if (ESH_GetCwd(sizeof(directory), directory) != kSuccess) return ESH_ERR_FAIL;
    joined.Append("%s/", directory);
  }
  joined.AppendText(name);
  return kSuccess;
}

/// The full name of a name that holds a device. @param floor the depth at which ".." is refused.
std::uint32_t ExpandWithDevice(std::string_view name, std::uint32_t floor, char* full) {
  if (name.starts_with(kMediaRoot)) name.remove_prefix(kMediaPrefix.size());
  if (!IsValidDeviceName(DeviceNameOf(name))) return ESH_ERR_FAIL;
  JoinedName joined;
  joined.AppendText(kMediaPrefix);
  joined.AppendText(name);
  return eliminatePoint(joined.Text(), floor, kNameRoom, full);
}

std::uint32_t ExpandWithoutDevice(const char* name, std::uint32_t floor, char* full) {
  JoinedName joined;
  if (JoinWorkingDirectory(name, joined) != kSuccess ||
      eliminatePoint(joined.Text(), floor, kNameRoom, full) != kSuccess)
    return ESH_ERR_FAIL;
  if (!HoldsDevice(full)) return kSuccess;  // outside the media; the commands refuse it by its missing device
  JoinedName with_device;
  with_device.AppendText(full);
  return ExpandWithDevice(with_device.View(), floor, full);
}

/// Converts a user or full name, whose ".." may not climb above the floor.
/// @param size room of `output` in bytes, which on a refusal holds whatever was built so far.
std::uint32_t Convert(const char* name, std::uint32_t floor, std::size_t size, char* output) {
  char full[kNameRoom];
  full[0] = '\0';
  std::uint32_t verdict = ESH_ERR_FAIL;
  if (name != nullptr && ESH_FS_IsValidFileName(name) == kSuccess)
    verdict = HoldsDevice(name) ? ExpandWithDevice(name, floor, full) : ExpandWithoutDevice(name, floor, full);
  return CopyBounded(output, size, full) ? verdict : ESH_ERR_FAIL;
}

/// A typed name stays inside its medium, and where that is mounted is not the user's business.
std::uint32_t ConvertTyped(const char* name, std::size_t size, char* output) {
  return Convert(name != nullptr && name[0] != '/' ? name : nullptr, kMediumFloor, size, output);
}

/// What stands behind "/mnt/<device>/" of a full name, or behind the "/" of one without a device.
std::string_view BehindDevice(std::string_view full) {
  full.remove_prefix(full.find(':') + 1);
  if (full.starts_with('/')) full.remove_prefix(1);
  return full;
}

}  // namespace

std::uint32_t expandMnt2DiskFullFileName(std::string_view name, char* full) {
  return ExpandWithDevice(name, kRootFloor, full);
}

std::uint32_t ESH_FS_GetFullFileName(const char* name, std::size_t size, char* output) {
  return Convert(name, kRootFloor, size, output);
}

std::uint32_t ESH_FS_GetUserFileName(const char* name, std::size_t size, char* output) {
  char full[kNameRoom];
  if (ESH_FS_GetFullFileName(name, sizeof(full), full) != kSuccess || !HoldsDevice(full) || output == nullptr) {
    CopyBounded(output, size, "");
    return ESH_ERR_FAIL;
  }
  return CopyBounded(output, size, full + kMediaPrefix.size()) ? kSuccess : kErrNameDoesNotFit;
}

std::uint32_t ESH_FS_GetUserFileNameByFullName(const char* name, std::size_t size, char* output) {
  return ESH_FS_GetUserFileName(name != nullptr && name[0] == '/' ? name : nullptr, size, output);
}

std::uint32_t ESH_FS_IsValidEshInputFileName(const char* name) {
  char full[kNameRoom];
  return ConvertTyped(name, sizeof(full), full);
}

std::uint32_t ESH_FS_IsValidUserFileName(const char* name) {
  if (name == nullptr || !HoldsDevice(name)) return ESH_ERR_FAIL;
  JoinedName with_root;
  with_root.Append("%s/%s", kMediaRoot, name);
  char full[kNameRoom];
  return Convert(with_root.Text(), kMediumFloor, sizeof(full), full);
}

std::uint32_t ESH_FS_IsValidFullFileName(const char* name) {
  char full[kNameRoom];
  return name != nullptr && name[0] == '/' ? ESH_FS_GetFullFileName(name, sizeof(full), full) : ESH_ERR_FAIL;
}

std::uint32_t ESH_InputName2FullValidName(const char* name, std::uint16_t expectFile, std::size_t size, char* output) {
  const bool is_legal = name != nullptr && (expectFile != 1 || ESH_IsExpectFile(name) == 1);
  return ConvertTyped(is_legal ? name : nullptr, size, output);
}

std::uint32_t ESH_FS_AnalyseFileName(const char* name, char* directory, char* file) {
  FixedText<kNameRoom + 1> full;
  char converted[kNameRoom];
  const bool has_room = CopyBounded(directory, kNameRoom, "") && CopyBounded(file, kComponentRoom, "");
  if (!has_room || ESH_FS_GetFullFileName(name, sizeof(converted), converted) != kSuccess) return ESH_ERR_FAIL;
  full.AppendText(converted);
  if (ESH_IsExpectFile(name) == 0 && ESH_IsExpectFile(converted) == 1) full.AppendText("/");
  const std::string_view rest = BehindDevice(full.View());
  const std::size_t slash = rest.rfind('/');
  FixedText<kNameRoom> parent;
  parent.AppendText(HoldsDevice(converted) ? "" : "/");
  parent.AppendText(slash == std::string_view::npos ? "" : rest.substr(0, slash));
  CopyBounded(directory, kNameRoom, parent.View());
  return CopyBounded(file, kComponentRoom, LastComponent(rest)) ? kSuccess : ESH_ERR_FAIL;
}
