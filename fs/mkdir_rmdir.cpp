#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "fs/file_commands.h"
#include "fs/file_messages.h"
#include "fs/named_file.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "fs/user_file.h"
#include "fs/working_directory.h"
#include "shell/command/parameter.h"
#include "term/prompts.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kDirectoryExists[] = "The directory already exists.\r";
constexpr char kFileExists[] = "The file with the same name already exists.\r";
constexpr char kCreated[] = "Directory %s created.\r\n";

constexpr char kNoDirectory[] = "The directory doesn't exist.\r";
constexpr char kIsCurrent[] = "Cannot delete current directory.\r";
constexpr char kRemoveQuestion[] = "Remove directory %s?[Y/N]:";
constexpr char kNotEmpty[] = "Failed to remove the directory because it is not empty.\r";
constexpr char kRemoved[] = "Directory %s removed.\r\n";
constexpr char kNotRemoved[] = "Failed to remove directory.\r";

/// Converts a typed name of something below a medium's root.
bool ResolveBelowRoot(const char* typed, NamedFile& file) {
  return ESH_InputName2FullValidName(typed, 0, sizeof(file.full), file.full) == kSuccess &&
         ESH_IsUserManipulatedFile(file.full) == kSuccess;
}

bool MakeDisplayName(NamedFile& file) {
  return ESH_FS_GetUserFileNameByFullName(file.full, sizeof(file.display), file.display) == kSuccess;
}

bool IsEmpty(DIR* directory) {
  for (const dirent* entry = readdir(directory); entry != nullptr; entry = readdir(directory))
    if (!IsDotOrDotDot(entry->d_name)) return false;
  return true;
}

/// Refuses what the question need not be asked for. @return NULL, or the message.
const char* WhyNotRemovable(NamedFile& file) {
  if (!ResolveBelowRoot(g_szSourceFile, file) || !IsDirectory(file.full) || !LiesOnMedium(file.full))
    return kNoDirectory;
  char current[kNameRoom];
  if (ESH_GetCwd(sizeof(current), current) != kSuccess) return kNoDirectory;
  if (std::strcmp(current, file.full) == 0) return kIsCurrent;
  return MakeDisplayName(file) ? nullptr : kNoDirectory;
}

}  // namespace

std::uint32_t ESH_ProcMkdir() {
  NamedFile file;
  if (!ResolveBelowRoot(g_szDestFile, file))  // "mkdir" records into the destination
    return Refuse(kWrongName);
  if (!LiesOnMedium(file.full)) return Refuse(kDoesNotExist);
  struct stat status {};
  if (stat(file.full, &status) == 0) return Refuse(S_ISDIR(status.st_mode) ? kDirectoryExists : kFileExists);
  if (!MakeDisplayName(file) || mkdir(file.full, ACCESSPERMS) != 0) return Refuse(kExecutionFailure);
  SyncMedia(file.full);
  std::printf(kCreated, file.display);
  return kSuccess;
}

std::uint32_t ESH_ProcRmdir() {
  NamedFile file;
  const char* refusal = WhyNotRemovable(file);
  if (refusal != nullptr) return Refuse(refusal);
  std::printf(kRemoveQuestion, file.display);
  if (!IsConfirmed()) return ESH_ERR_FAIL;
  UniqueDir directory(opendir(file.full));
  if (directory == nullptr) return Refuse(kNoDirectory);
  const bool is_empty = IsEmpty(directory.get());
  directory.reset();  // some file systems do not remove what is open
  if (!is_empty) return Refuse(kNotEmpty);
  if (rmdir(file.full) != 0) {
    std::puts(kNotRemoved);
    return kSuccess;  // the message says all there is; the result is success
  }
  SyncMedia(file.full);
  std::printf(kRemoved, file.display);
  return kSuccess;
}
