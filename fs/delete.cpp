#include <sys/stat.h>

#include <cstdio>

#include "fs/file_commands.h"
#include "fs/file_messages.h"
#include "fs/named_file.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "fs/user_file.h"
#include "shell/command/parameter.h"
#include "term/prompts.h"
#include "term/terminal.h"
#include "util/result.h"

namespace {

constexpr char kIsDirectory[] = "Please use 'rmdir' to remove a directory.\r";
constexpr char kDeleteQuestion[] = "Delete %s?[Y/N]:";
constexpr char kPleaseWait[] = "Deleting the file permanently will take a long time. Please wait...\r";
constexpr char kDeleted[] = "Start to delete %s...Done.\r\n";  // no blank before "Done"

}  // namespace

std::uint32_t ESH_ProcDelete() {
  NamedFile file;
  struct stat status {};
  if (ESH_InputName2FullValidName(g_szSourceFile, 1, sizeof(file.full), file.full) != kSuccess ||
      ESH_IsUserManipulatedFile(file.full) != kSuccess || stat(file.full, &status) != 0 || !LiesOnMedium(file.full))
    return Refuse(kDoesNotExist);
  if (S_ISDIR(status.st_mode)) return Refuse(kIsDirectory);
  if (ESH_FS_GetUserFileNameByFullName(file.full, sizeof(file.display), file.display) != kSuccess)
    return Refuse(kDoesNotExist);
  std::printf(kDeleteQuestion, file.display);
  if (!IsConfirmed()) return ESH_ERR_FAIL;
  std::puts(kPleaseWait);
  ESH_TERM_OFlush();  // it is to be read while the medium works
  const bool removed = std::remove(file.full) == 0;
  SyncMedia(file.full);
  if (!removed) return Refuse(kExecutionFailure);
  std::printf(kDeleted, file.display);
  return kSuccess;
}
