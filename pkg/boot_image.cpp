#include "pkg/boot_image.h"

#include "fs/name_rules.h"
#include "pkg/compatibility.h"
#include "pkg/package_format.h"
#include "pkg/package_reader.h"
#include "pkg/package_text.h"
#include "pkg/system_identity.h"
#include "util/fixed_text.h"

namespace {

constexpr std::size_t kPathRoom = kMediaPrefix.size() + kBootImageNameRoom;

}  // namespace

void ReadRunningVersion(char* version) {
  char name[kBootImageNameRoom];
  FixedText<kPathRoom> path;
  ESH_GetBootImageName(name);  // without a name there is no such package either
  path.Append("%s/%s", kMediaRoot, name);
  const UniquePackage package(PackageReadFileCreateByFile(path.Text()));
  const UniqueLines description(package == nullptr ? nullptr : OpenPackageText(package.get(), kDescriptionFile));
  ReadBootVersion(description.get(), version);
}
