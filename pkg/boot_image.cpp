#include "pkg/boot_image.h"

#include "fs/name_rules.h"
#include "pkg/compatibility.h"
#include "pkg/contained_file.h"
#include "pkg/package_format.h"
#include "pkg/package_reader.h"
#include "pkg/package_text.h"
#include "pkg/system_identity.h"
#include "util/fixed_text.h"

namespace {

constexpr std::size_t kPathRoom = kMediaPrefix.size() + kBootImageNameRoom;

UniqueLines OpenDescription(PKG_READER_S* package) {
  const PackageFileEntry* entry = FindFile(*package, kDescriptionFile);
  const UniqueFileHead head(entry == nullptr ? nullptr : FileHeadCreateByFileDesc(package, entry));
  const bool is_modest = head != nullptr && head->stored_size <= kMostBootDescription &&
                         (head->compression == kStoredAsIs || head->unpacked_size <= kMostBootDescription);
  return is_modest ? OpenPackageText(package, kDescriptionFile) : nullptr;
}

}  // namespace

void ReadRunningVersion(char* version) {
  char name[kBootImageNameRoom];
  FixedText<kPathRoom> path;
  ESH_GetBootImageName(name);  // without a name there is no such package either
  path.Append("%s/%s", kMediaRoot, name);
  const UniquePackage package(PackageReadFileCreateByFile(path.Text()));
  const UniqueLines description(package == nullptr ? nullptr : OpenDescription(package.get()));
  ReadBootVersion(description.get(), version);
}
