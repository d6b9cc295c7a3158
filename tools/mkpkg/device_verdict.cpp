#include "tools/mkpkg/device_verdict.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "fs/names/dot_elimination.h"
#include "fs/names/name_rules.h"
#include "pkg/format/compatibility.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/head_check.h"
#include "pkg/format/line_reader.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_name.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/product_code.h"
#include "pkg/format/public_key.h"
#include "pkg/format/signature.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/ascii.h"
#include "util/result.h"

namespace mkpkg {
namespace {

constexpr char kOperationFailed[] = "Operation failed!";
constexpr char kWrongParameter[] = " % Wrong parameter found at '^' position.";
constexpr char kTooMany[] = " % Too many parameters found at '^' position.";
constexpr std::size_t kLongestTyped = 63;
/// What the names of media begin with. Which of them a device has, and how many units, nobody tells.
constexpr std::string_view kMedia[] = {"flash", "cf", "usb"};

DeviceVerdict Accept() { return {true, "", "", ""}; }

DeviceVerdict Refuse(std::string step, std::string reason, std::string line) {
  return {false, std::move(step), std::move(reason), std::move(line)};
}

std::string Corrupted(const DeviceFacts& facts) { return facts.typed_name + " is corrupted."; }

/// Whether a word names a place below the root of a medium that a device can have. A relative name counts as one on
/// flash:, where devices start.
bool IsTypable(const std::string& word) {
  const bool has_device = word.find(':') != std::string::npos;
  const std::string name = has_device ? word : "flash:/" + word;
  const std::string_view device = DeviceNameOf(name);
  const bool is_known = std::any_of(std::begin(kMedia), std::end(kMedia),
                                    [&](std::string_view medium) { return device.starts_with(medium); });
  char full[kNameRoom];
  return word.size() <= kLongestTyped && std::all_of(word.begin(), word.end(), IsPrintable) && word[0] != '/' &&
         is_known && ESH_FS_IsValidFileName(name.c_str()) == kSuccess && IsValidDeviceName(device) &&
         eliminatePoint(("/mnt/" + name).c_str(), kMediumFloor, sizeof(full), full) == kSuccess &&
         !std::string_view(full).ends_with(':');
}

/// What the shell says to the name before a command sees it.
DeviceVerdict JudgeWord(const std::string& name) {
  const std::string word = name.substr(0, name.find(' '));
  if (!IsTypable(word)) {
    return Refuse("typed-name", word + " is no name below a medium flash, cf or usb, of 63 characters at most",
                  kWrongParameter);
  }
  return word == name ? Accept() : Refuse("typed-name", "a name ends at its first blank", kTooMany);
}

DeviceVerdict JudgeName(const DeviceFacts& facts) {
  const std::string& name = facts.typed_name;
  const bool fits = ESH_FilterFile(name.c_str(), kPackageSuffix, kMaxPackageName) == 1;
  if (fits && !HoldsAliasMark(name.c_str())) return Accept();
  return Refuse("name", "a package's name ends in .bin and holds no ~", name + ": Invalid file name.");
}

DeviceVerdict JudgeUnit(const std::string& name) {
  return IsFirstUnit(DeviceNameOf(name)) ? Accept()
                                         : Refuse("primary-partition", "only the first unit of a medium may hold it",
                                                  "The startup software images must be in the primary partition.");
}

/// Opens a package as both commands do, when its name is one.
DeviceVerdict Open(const std::string& path, const DeviceFacts& facts, UniquePackage& reader) {
  if (DeviceVerdict verdict = JudgeName(facts); !verdict.accepted) return verdict;
  PKG_READER_S* opened = nullptr;
  const PackageVerdict opening = OpenPackage(path.c_str(), opened);
  reader.reset(opened);
  return reader ? Accept() : Refuse(NameOfVerdict(opening), ReasonOf(opening), Corrupted(facts));
}

/// Checks and seals an open package as both commands do.
DeviceVerdict JudgeGenuine(PKG_READER_S* reader, const DeviceFacts& facts) {
  const std::uint32_t product = ReadVersionTag(facts.version_file.c_str(), kProductTagName);
  if (product == kUnknownTag)
    return Refuse("product-tag", "the device's version file has no ProductTag", Corrupted(facts));
  const PackageVerdict verdict = JudgePackage(reader, product, facts.key_directory.c_str());
  if (verdict == PackageVerdict::kGood) return Accept();
  return Refuse(NameOfVerdict(verdict), ReasonOf(verdict), Corrupted(facts));
}

/// Opens a text of a package for reading line by line; none when it has no such text.
UniqueLines OpenText(const PackageModel& package, std::uint32_t id) {
  const ContainedFile* file = package.Find(id);
  return UniqueLines(file == nullptr || file->data.empty() ? nullptr
                                                           : ReadBuffCreateByMem(file->data.data(), file->data.size()));
}

std::string RunningVersion(const std::string& boot_image) {
  PackageModel boot;
  if (boot_image.empty() || !ReadPackage(boot_image, boot).empty()) return "";
  const ContainedFile* description = boot.Find(kDescriptionFile);
  const bool is_modest = description != nullptr && description->stored_size <= kMostBootDescription &&
                         description->told_size <= kMostBootDescription;
  if (!is_modest) return "";
  char version[kRunningVersionRoom];
  ReadBootVersion(OpenText(boot, kDescriptionFile).get(), version);
  return version;
}

bool IsCompatible(const PackageModel& package, const std::string& running) {
  char product_version[kProductVersionRoom];
  ReadProductVersion(OpenText(package, kDescriptionFile).get(), product_version);
  return IsCompliant(OpenText(package, kCompatibilityFile).get(), product_version, running.c_str());
}

/// The first image for a device whose head a device can read.
const ContainedFile* FindImage(const PackageModel& package, std::uint32_t device_tag) {
  for (const ContainedFile& file : package.files)
    if (file.id == kSystemImageFile && file.has_head && file.device_code == device_tag) return &file;
  return nullptr;
}

DeviceVerdict JudgeImage(const ContainedFile* image) {
  if (image == nullptr) return Refuse("image", "the package has no image for this device's tag", kOperationFailed);
  if (!image->problem.empty())
    return Refuse("image", "image " + image->name + " gives no data: " + image->problem, kOperationFailed);
  if (!IsPlainImageName(image->name.substr(0, kImageNameRoom - 1))) {  // a device cuts it there
    return Refuse("image-name", "the image's name holds more than letters, digits, \".\", \"_\", \"-\" and \"+\"",
                  kOperationFailed);
  }
  return Accept();
}

/// The part of "install load" that comes after the package was found genuine.
DeviceVerdict JudgeContents(const PackageModel& package, const DeviceFacts& facts) {
  if (OpenText(package, kCompatibilityFile) == nullptr) {
    return Refuse("compatibility-list", "the package has no compatibility list",
                  "File " + facts.typed_name + " is invalid.");
  }
  const std::string running = RunningVersion(facts.boot_image);
  if (!IsCompatible(package, running)) {
    return Refuse("compatible",
                  running.empty() ? "the version of the boot image is unknown"
                                  : "the compatibility list does not name boot image version " + running,
                  "This system image is not compliant with the boot image.");
  }
  const std::uint32_t tag = ReadVersionTag(facts.version_file.c_str(), kDeviceTagName);
  if (tag == kUnknownTag) return Refuse("device-tag", "the device's version file has no DeviceTag", kOperationFailed);
  return JudgeImage(FindImage(package, tag));
}

}  // namespace

DeviceVerdict JudgeDisplay(const std::string& path, const DeviceFacts& facts) {
  UniquePackage reader;
  if (DeviceVerdict verdict = JudgeWord(facts.typed_name); !verdict.accepted) return verdict;
  if (DeviceVerdict verdict = Open(path, facts, reader); !verdict.accepted) return verdict;
  if (DeviceVerdict verdict = JudgeGenuine(reader.get(), facts); !verdict.accepted) return verdict;
  PackageModel package;
  ReadFiles(reader.get(), package);
  if (OpenText(package, kDescriptionFile) == nullptr)
    return Refuse("description", "the package has no description", "Operation failed! ");
  return Accept();
}

DeviceVerdict JudgeInstall(const std::string& path, const DeviceFacts& facts) {
  UniquePackage reader;
  if (DeviceVerdict verdict = JudgeWord(facts.typed_name); !verdict.accepted) return verdict;
  if (DeviceVerdict verdict = JudgeUnit(facts.typed_name); !verdict.accepted) return verdict;
  if (DeviceVerdict verdict = Open(path, facts, reader); !verdict.accepted) return verdict;
  if (reader->head.attributes != 0 || reader->head.package_type != kSystemPackage) {
    return Refuse("system-package", "its attribute is not 0 or its type not 2",
                  "Package " + facts.typed_name + " is not a system package.");
  }
  if (DeviceVerdict verdict = JudgeGenuine(reader.get(), facts); !verdict.accepted) return verdict;
  PackageModel package;
  ReadFiles(reader.get(), package);
  return JudgeContents(package, facts);
}

bool NamesWeakKey(const PackageModel& package, const std::string& key_directory) {
  const std::string name = package.IsSignedInHead() ? kHeadFormKey : TrailerField(package, kKeyLabel);
  std::string key;
  return ReadWholeFile(key_directory + "/" + name + kKeySuffix, key).empty() && IsWeakDeviceKey(key);
}

}  // namespace mkpkg
