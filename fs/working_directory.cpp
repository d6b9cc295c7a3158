#include "fs/working_directory.h"

#include <fcntl.h>
#include <glob.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "fs/names/name_rules.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kStandIn[] = "SYSPATH";
/// Kinds of media, the most trusted first.
constexpr const char* kMediaKinds[] = {"flash", "cf", "usb"};

/// Whether a path below /mnt is a medium, and no slot link to one.
bool IsMedium(const char* path) {
  const std::string_view name(path);
  if (!name.ends_with(':') || name.find('#') != std::string_view::npos) return false;
  struct stat status {};
  return lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

/// Only the first match of each kind is looked at.
bool MoveToMediumOfKind(const char* kind) {
  FixedText<kNameRoom> pattern;
  pattern.Append("%s/%s*", kMediaRoot, kind);
  glob_t matches{};
  const bool moved = glob(pattern.Text(), 0, nullptr, &matches) == 0 && IsMedium(matches.gl_pathv[0]) &&
                     chdir(matches.gl_pathv[0]) == 0;
  globfree(&matches);
  return moved;
}

}  // namespace

std::uint32_t ESH_GetCwd(std::size_t size, char* output) {
  char directory[kNameRoom];
  const char* found = getcwd(directory, sizeof(directory));
  if (found == nullptr) found = std::getenv(kStandIn);
  CopyBounded(output, size, found == nullptr ? "" : found);
  return found == nullptr || output == nullptr || size == 0 ? ESH_ERR_FAIL : kSuccess;
}

std::uint32_t ESH_SetPwd() {
  for (const char* kind : kMediaKinds)
    if (MoveToMediumOfKind(kind)) return kSuccess;
  return ESH_ERR_FAIL;
}

WorkingDirectoryKept::WorkingDirectoryKept() : directory_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

WorkingDirectoryKept::~WorkingDirectoryKept() {
  if (directory_) (void)!fchdir(directory_.Get());  // there is nowhere else to go back to
}
