#include <cstdio>

#include "fs/file_commands.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "fs/working_directory.h"
#include "util/result.h"

namespace {

constexpr char kCannotBeRead[] = "CheckInvalidFileDir";  // this text, and no line end
constexpr char kWorkingDirectoryIsGone[] = "Working directory doesn't exist.\r";

}  // namespace

std::uint32_t ESH_ProcPwd() {
  char directory[kNameRoom];
  if (ESH_GetCwd(sizeof(directory), directory) != kSuccess) {
    std::fputs(kCannotBeRead, stdout);
    return ESH_ERR_FAIL;
  }
  char name[kNameRoom];
  if (ESH_FS_GetUserFileName(directory, sizeof(name), name) != kSuccess) {
    std::puts(kWorkingDirectoryIsGone);
    return ESH_ERR_FAIL;
  }
  std::printf("%s\r\n", name);
  return kSuccess;
}
