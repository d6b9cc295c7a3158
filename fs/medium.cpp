#include "fs/medium.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "fs/names/name_rules.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"
#include "util/vector.h"

namespace {

using MediumPath = FixedText<kNameRoom>;

void AppendCopy(VEC_S& names, const char* name) {
  UniqueText copy(static_cast<char*>(std::malloc(kComponentRoom)));
  if (copy == nullptr) return;
  CopyBounded(copy.get(), kComponentRoom, name);
  if (VEC_Add(&names, kNoIndex, copy.get()) != kNoIndex) (void)copy.release();  // the vector's now
}

/// Gathers the media first: the links are made in the very directory that is read.
void GatherMedia(VEC_S& names) {
  const UniqueDir root(opendir(kMediaRoot));
  if (root == nullptr) return;
  for (const dirent* entry = readdir(root.get()); entry != nullptr; entry = readdir(root.get()))
    if (!IsDotOrDotDot(entry->d_name) && IsDirPath(entry->d_name) == 1) AppendCopy(names, entry->d_name);
}

}  // namespace

std::uint16_t ESH_CheckDevice(const char* name) {
  const std::string_view device = DeviceNameOf(name);
  if (device.empty()) return 0;
  MediumPath link;
  link.Append("%s/%s%.*s", kMediaRoot, kSlotPrefix, static_cast<int>(device.size()), device.data());
  struct stat status {};
  return lstat(link.Text(), &status) == 0 && S_ISLNK(status.st_mode) ? 1 : 0;
}

bool IsOnPresentMedium(const char* full) {
  return std::string_view(full).starts_with(kMediaPrefix) && ESH_CheckDevice(full + kMediaPrefix.size()) == 1;
}

std::uint16_t ESH_IsDeviceForPkgm(const char* name) {
  std::string_view rest(name);
  if (rest.starts_with(kMediaPrefix)) rest.remove_prefix(kMediaPrefix.size());
  return ESH_CheckDevice(rest.data()) == 1 && IsFirstUnit(DeviceNameOf(rest)) ? 1 : 0;
}

std::uint16_t IsDirPath(const char* entry) {
  MediumPath path;
  path.Append("%s/%s", kMediaRoot, entry);
  struct stat status {};
  return lstat(path.Text(), &status) == 0 && S_ISDIR(status.st_mode) ? 1 : 0;
}

void SymLinkDiskAddFree(char* entry) {
  const UniqueText name(entry);
  MediumPath link;
  link.Append("%s/%s%s", kMediaRoot, kSlotPrefix, name.get());
  MediumPath medium;
  medium.Append("%s/%s", kMediaRoot, name.get());
  (void)!symlink(medium.Text(), link.Text());  // the link may be there from an earlier run
}

void LinkMedia() {
  const UniqueVector names(VEC_Alloc(kUsualSlots));
  if (names == nullptr) return;
  GatherMedia(*names);
  ForEachSlot<char>(*names, [](std::uint64_t, char& name) { SymLinkDiskAddFree(&name); });
}
