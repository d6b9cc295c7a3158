#include "pkg/install/package_help.h"

#include <sys/stat.h>

#include <cstddef>

#include "fs/file_help.h"
#include "pkg/format/package_name.h"
#include "util/result.h"

namespace {

constexpr std::size_t kMaxOfferedName = 68;  // of the full name

bool IsRealDirectory(const char* full) {
  struct stat status {};
  return lstat(full, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::uint32_t HelpInstallLoad(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_PACKAGE, HelpInstallFilter, help);
}

std::uint32_t HelpDisInstallPkg(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_PACKAGE, HelpBinFilter, help);
}

std::uint32_t HelpInstallFilter(const char* full) {
  return !HoldsAliasMark(full) && !IsRealDirectory(full) && ESH_FilterFile(full, kPackageSuffix, kMaxOfferedName) == 1
             ? kSuccess
             : ESH_ERR_FAIL;
}

std::uint32_t HelpBinFilter(const char* full) { return HelpInstallFilter(full); }
