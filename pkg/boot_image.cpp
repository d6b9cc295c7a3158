#include "pkg/boot_image.h"

#include <string_view>

#include "fs/name_rules.h"
#include "pkg/package_format.h"
#include "pkg/package_reader.h"
#include "pkg/package_text.h"
#include "pkg/system_identity.h"
#include "pkg/version_file.h"
#include "util/fixed_text.h"

namespace {

constexpr std::size_t kPathRoom = kMediaPrefix.size() + kBootImageNameRoom;

/// What follows the keys of both versions, as far as the product version.
void JoinVersions(READ_BUFF_S* description, TextBuilder& version) {
  constexpr std::string_view kPlatform(kPlatformVersion);
  constexpr std::string_view kProduct(kProductVersion);
  bool has_platform = false;
  for (const char* text = ReadBuffGets(description); text != nullptr; text = ReadBuffGets(description)) {
    const std::string_view line(text);
    if (!has_platform && line.starts_with(kPlatform)) {
      has_platform = true;
      version.AppendText(line.substr(kPlatform.size()));
    } else if (line.starts_with(kProduct)) {
      version.AppendText("-");
      version.AppendText(line.substr(kProduct.size()));
      return;
    }
  }
}

}  // namespace

void ReadRunningVersion(char* version) {
  version[0] = '\0';
  char name[kBootImageNameRoom];
  FixedText<kPathRoom> path;
  ESH_GetBootImageName(name);  // without a name there is no such package either
  path.Append("%s/%s", kMediaRoot, name);
  const UniquePackage package(PackageReadFileCreateByFile(path.Text()));
  const UniqueLines description(package == nullptr ? nullptr : OpenPackageText(package.get(), kDescriptionFile));
  if (description == nullptr) {
    return;
  }
  FixedText<kRunningVersionRoom> joined;
  JoinVersions(description.get(), joined);
  CopyBounded(version, kRunningVersionRoom, joined.View());
}
