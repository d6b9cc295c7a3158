#include "pkg/package_name.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#include "fs/medium.h"
#include "fs/name_rules.h"
#include "fs/path.h"
#include "fs/user_file.h"
#include "shell/result.h"
#include "util/ascii.h"

namespace {

constexpr char kInvalidName[] = "%s: Invalid file name.\r\n";
constexpr char kNoPackage[] = "The package %s doesn't exist. \r\n";  // with its blank
constexpr std::size_t kMaxPackageName = 127;

/// Whether a name, which may be relative to the working directory, leads to a present medium.
bool IsOnMedium(const char* name) {
  char directory[kNameRoom];
  char file[kComponentRoom];
  char full[kNameRoom];
  return ESH_FS_AnalyseFileName(name, directory, file) == kSuccess &&
         ESH_InputName2FullValidName(name, 0, sizeof(full), full) == kSuccess && IsOnPresentMedium(full);
}

bool IsExistingPackage(const char* name, char* full) {
  return ESH_InputName2FullValidName(name, 1, kNameRoom, full) == kSuccess &&
         ESH_IsUserManipulatedFile(full) == kSuccess && access(full, F_OK) == 0;
}

}  // namespace

std::uint16_t ESH_FilterFile(const char* name, const char* suffix, std::size_t maxLength) {
  const std::string_view text(name);
  const std::size_t dot = text.rfind('.');
  return !text.empty() && text.size() <= maxLength && text.size() > std::strlen(suffix) &&
                 dot != std::string_view::npos && EqualsIgnoringCase(text.substr(dot), suffix)
             ? 1
             : 0;
}

bool HoldsAliasMark(const char* name) { return std::strchr(name, '~') != nullptr; }

std::uint32_t PackageNameProcess(const char* name, char* fullPath) {
  if (!IsOnMedium(name) || ESH_FilterFile(name, kPackageSuffix, kMaxPackageName) == 0 || HoldsAliasMark(name)) {
    std::printf(kInvalidName, name);
    return ESH_ERR_FAIL;
  }
  if (!IsExistingPackage(name, fullPath)) {
    std::printf(kNoPackage, name);
    return ESH_ERR_FAIL;
  }
  return kSuccess;
}
