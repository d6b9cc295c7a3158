#include "pkg/format/package_judge.h"

#include <cstring>
#include <span>

#include "pkg/format/compatibility.h"
#include "pkg/format/contained_file.h"
#include "pkg/format/package_name.h"
#include "pkg/format/product_code.h"
#include "util/fixed_text.h"

namespace {

/// The first image that is built for a device. One whose head is damaged is passed over.
/// @param name receives its name; room for kImageNameRoom bytes, where it is cut.
const PackageFileEntry* FindSystemImage(PKG_READER_S* package, std::uint32_t device_tag, char* name) {
  for (const PackageFileEntry& entry : std::span(package->head.files).first(package->head.file_count)) {
    if (entry.file_id != kSystemImageFile) continue;
    const UniqueFileHead head(FileHeadCreateByFileDesc(package, &entry));
    if (head == nullptr || head->device_code != device_tag) continue;
    (void)CopyBounded(name, kImageNameRoom, {head->name, strnlen(head->name, sizeof(head->name))});
    return &entry;
  }
  return nullptr;
}

PackageVerdict JudgeCompatibility(PKG_READER_S* package, LoadDevice& device) {
  const UniqueLines list = device.OpenText(package, kCompatibilityFile);
  if (list == nullptr) return PackageVerdict::kCompatibilityList;
  char running[kRunningVersionRoom];
  device.ReadRunningVersion(running);
  char product_version[kProductVersionRoom];
  ReadProductVersion(device.OpenText(package, kDescriptionFile).get(), product_version);
  return IsCompliant(list.get(), product_version, running) ? PackageVerdict::kGood : PackageVerdict::kCompatible;
}

}  // namespace

PackageVerdict JudgeImage(PKG_READER_S* package, std::uint32_t device_tag, LoadDevice& device) {
  if (device_tag == kUnknownTag) return PackageVerdict::kDeviceTag;
  char name[kImageNameRoom];
  const PackageFileEntry* image = FindSystemImage(package, device_tag, name);
  if (image == nullptr || !device.TakeImage(package, *image)) return PackageVerdict::kImage;
  return IsPlainImageName(name) ? PackageVerdict::kGood : PackageVerdict::kImageName;
}

PackageVerdict JudgeLoad(PKG_READER_S* package, LoadDevice& device) {
  if (package->head.attributes != 0 || package->head.package_type != kSystemPackage)
    return PackageVerdict::kPackageType;
  PackageVerdict verdict = device.Verify(package);
  if (verdict == PackageVerdict::kGood) verdict = JudgeCompatibility(package, device);
  if (verdict != PackageVerdict::kGood) return verdict;
  device.BeginImage();
  return JudgeImage(package, device.DeviceTag(), device);
}
