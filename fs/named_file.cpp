#include "fs/named_file.h"

#include <dirent.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "fs/path.h"
#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/new_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

bool IsOneInode(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

/// A full name's parent as a text of its own.
struct Parent {
  explicit Parent(const char* full) { CopyText(path, ParentOf(full)); }
  char path[kNameRoom];
};

/// Whether a path without links is a medium's directory or below it.
bool IsOfMedium(std::string_view real) {
  if (!real.starts_with(kMediaPrefix)) return false;
  real.remove_prefix(kMediaPrefix.size());
  return real.substr(0, real.find('/')).ends_with(':');
}

/// Whether a directory lists an entry in exactly this spelling.
bool ListsExactly(const char* directory, std::string_view name) {
  const UniqueDir entries(opendir(directory));
  if (entries == nullptr) return false;
  for (const dirent* entry = readdir(entries.get()); entry != nullptr; entry = readdir(entries.get()))
    if (name == entry->d_name) return true;
  return false;
}

/// Whether two names of one file that has several links are the same link.
bool IsSameLink(const char* source, const char* destination) {
  const UniqueText real_source(realpath(source, nullptr));
  if (real_source == nullptr) return false;
  const Parent source_parent(real_source.get());
  const Parent parent(destination);
  struct stat source_directory {};
  struct stat directory {};
  if (stat(source_parent.path, &source_directory) != 0 || stat(parent.path, &directory) != 0 ||
      !IsOneInode(source_directory, directory))
    return false;
  const std::string_view source_name = LastComponent(real_source.get());
  const std::string_view name = LastComponent(destination);
  if (source_name == name) return true;
  return EqualsIgnoringCase(source_name, name) && !ListsExactly(parent.path, name);
}

bool ResolveTypedName(const char* typed, std::uint16_t expectFile, NamedFile& file) {
  return ESH_InputName2FullValidName(typed, expectFile, sizeof(file.full), file.full) == kSuccess &&
         ESH_FS_GetUserFileNameByFullName(file.full, sizeof(file.display), file.display) == kSuccess;
}

bool ResolveRegularFile(const char* typed, NamedFile& file, struct stat& status) {
  return ResolveTypedName(typed, 1, file) && stat(file.full, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

bool Exists(const char* full) { return access(full, F_OK) == 0; }

bool IsDirectory(const char* full) {
  struct stat status {};
  return stat(full, &status) == 0 && S_ISDIR(status.st_mode);
}

bool LiesOnMedium(const char* full) {
  char real[PATH_MAX];
  return realpath(Parent(full).path, real) != nullptr && IsOfMedium(real) && IsDirectory(real);
}

bool SyncMediumOfEntry(const char* full) { return SyncMediumOf(Parent(full).path); }

void SyncMedia(const char* full) {
  sync();
  SyncMediumOfEntry(full);
}

std::uint32_t ESH_CopyGetDestFullName(const char* typed, const char* sourceBaseName, char* output) {
  char full[kNameRoom];
  if (ESH_InputName2FullValidName(typed, 0, sizeof(full), full) != kSuccess) return ESH_ERR_FAIL;
  FixedText<kNameRoom + kComponentRoom> destination;
  destination.AppendText(full);
  if (IsDirectory(full))
    destination.Append("/%s", sourceBaseName);
  else if (ESH_IsExpectFile(typed) == 0 || !IsDirectory(Parent(full).path))
    return ESH_ERR_FAIL;
  return CopyBounded(output, kNameRoom, destination.View()) ? kSuccess : ESH_ERR_FAIL;
}

bool ResolveTransfer(const char* typed_source, const char* typed_destination, NamedFile& source, NamedFile& destination,
                     struct stat& status) {
  if (!ResolveRegularFile(typed_source, source, status)) return false;
  const char* base_name = LastComponent(typed_source).data();  // the end of a terminated text
  return ESH_CopyGetDestFullName(typed_destination, base_name, destination.full) == kSuccess &&
         ESH_FS_GetUserFileNameByFullName(destination.full, sizeof(destination.display), destination.display) ==
             kSuccess &&
         LiesOnMedium(destination.full);
}

bool IsSameEntry(const char* source, const char* destination) {
  if (std::strcmp(source, destination) == 0) return true;
  struct stat source_status {};
  struct stat status {};
  if (stat(source, &source_status) != 0 || lstat(destination, &status) != 0 || S_ISLNK(status.st_mode) ||
      !IsOneInode(source_status, status))
    return false;
  return status.st_nlink == 1 || IsSameLink(source, destination);
}
