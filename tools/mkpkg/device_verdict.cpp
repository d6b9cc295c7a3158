#include "tools/mkpkg/device_verdict.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "pkg/head_check.h"
#include "pkg/package_reader.h"
#include "pkg/product_code.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/ascii.h"

namespace mkpkg {
namespace {

constexpr std::string_view kSuffix = ".bin";
constexpr std::size_t kMaxName = 127;
constexpr std::size_t kVersionRoom = 127;  // of the running version
constexpr std::size_t kProductVersionRoom = 64;
constexpr std::string_view kPlatformVersion = "Platform version: ";
constexpr std::string_view kProductVersion = "Product version: ";
constexpr char kHeadKey[] = "digital_sign_old_public";
constexpr char kKeySuffix[] = ".key";

DeviceVerdict Accept() { return {true, "", "", ""}; }

DeviceVerdict Refuse(std::string step, std::string reason, std::string line) {
  return {false, std::move(step), std::move(reason), std::move(line)};
}

std::string Corrupted(const DeviceFacts& facts) { return facts.typed_name + " is corrupted."; }

DeviceVerdict JudgeName(const DeviceFacts& facts) {
  const std::string& name = facts.typed_name;
  const bool has_suffix = name.size() > kSuffix.size() && name.size() <= kMaxName &&
                          EqualsIgnoringCase(std::string_view(name).substr(name.size() - kSuffix.size()), kSuffix);
  if (has_suffix && name.find('~') == std::string::npos) return Accept();
  return Refuse("name", "a package's name ends in .bin and holds no ~", name + ": Invalid file name.");
}

/// Opens, checks and seals a package as both commands do.
DeviceVerdict JudgeGenuine(PKG_READER_S* reader, const DeviceFacts& facts) {
  const std::uint32_t product = ReadVersionTag(facts.version_file.c_str(), "ProductTag");
  if (product == kUnknownTag)
    return Refuse("product-tag", "the device's version file has no ProductTag", Corrupted(facts));
  const PackageVerdict verdict = JudgePackage(reader, product, facts.key_directory.c_str());
  if (verdict == PackageVerdict::kGood) return Accept();
  return Refuse(NameOfVerdict(verdict), ReasonOf(verdict), Corrupted(facts));
}

std::string RunningVersion(const std::string& boot_image) {
  PackageModel boot;
  if (boot_image.empty() || !ReadPackage(boot_image, boot).empty()) return "";
  const ContainedFile* description = boot.Find(kDescriptionFile);
  if (description == nullptr) return "";
  std::string version;
  for (const std::string& line : LinesOf(description->data)) {
    if (version.empty() && line.starts_with(kPlatformVersion)) version = line.substr(kPlatformVersion.size());
    if (line.starts_with(kProductVersion)) {
      version += "-" + line.substr(kProductVersion.size());
      break;
    }
  }
  return version.substr(0, kVersionRoom);
}

std::string ProductVersion(const PackageModel& package) {
  const ContainedFile* description = package.Find(kDescriptionFile);
  std::string version;
  if (description == nullptr) return version;
  for (const std::string& raw : LinesOf(description->data)) {
    const std::string line = TrimmedLine(raw);
    if (BeginsIgnoringCase(line, kProductVersion)) {
      version = line.substr(kProductVersion.size(), kProductVersionRoom);
    }
  }
  return version;
}

bool IsCompatible(const PackageModel& package, const std::string& running) {
  if (running.empty()) return false;
  const std::string product = ProductVersion(package);
  const std::string ending = product.empty() ? "" : "-" + product;
  bool in_list = false;
  for (const std::string& raw : LinesOf(package.Find(kCompatibilityFile)->data)) {
    const std::string line = TrimmedLine(raw);
    in_list = in_list || line == "[boot]";
    if (in_list && line + ending == running) return true;
  }
  return false;
}

/// The part of "install load" that comes after the package was found genuine.
DeviceVerdict JudgeContents(const PackageModel& package, const DeviceFacts& facts) {
  const ContainedFile* list = package.Find(kCompatibilityFile);
  if (list == nullptr || list->data.empty()) {
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
  const std::uint32_t tag = ReadVersionTag(facts.version_file.c_str(), "DeviceTag");
  if (tag == kUnknownTag) {
    return Refuse("device-tag", "the device's version file has no DeviceTag", "Operation failed!");
  }
  const auto image = std::find_if(package.files.begin(), package.files.end(), [&](const ContainedFile& file) {
    return file.id == kSystemImageFile && file.device_code == tag && !file.name.empty();
  });
  if (image == package.files.end() || !image->problem.empty()) {
    return Refuse("image",
                  image == package.files.end() ? "the package has no image for this device's tag"
                                               : "image " + image->name + " gives no data: " + image->problem,
                  "Operation failed!");
  }
  return Accept();
}

}  // namespace

DeviceVerdict JudgeDisplay(const std::string& path, const DeviceFacts& facts) {
  if (DeviceVerdict verdict = JudgeName(facts); !verdict.accepted) return verdict;
  PKG_READER_S* opened = nullptr;
  const PackageVerdict opening = OpenPackage(path.c_str(), opened);
  const UniquePackage reader(opened);
  if (!reader) return Refuse(NameOfVerdict(opening), ReasonOf(opening), Corrupted(facts));
  if (DeviceVerdict verdict = JudgeGenuine(reader.get(), facts); !verdict.accepted) return verdict;
  PackageModel package;
  ReadFiles(reader.get(), package);
  const ContainedFile* description = package.Find(kDescriptionFile);
  if (description == nullptr || description->data.empty()) {
    return Refuse("description", "the package has no description", "Operation failed! ");
  }
  return Accept();
}

DeviceVerdict JudgeInstall(const std::string& path, const DeviceFacts& facts) {
  if (DeviceVerdict verdict = JudgeName(facts); !verdict.accepted) return verdict;
  PKG_READER_S* opened = nullptr;
  const PackageVerdict opening = OpenPackage(path.c_str(), opened);
  const UniquePackage reader(opened);
  if (!reader) return Refuse(NameOfVerdict(opening), ReasonOf(opening), Corrupted(facts));
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
  const std::string name = package.IsSignedInHead() ? kHeadKey : TrailerField(package, "Key: ");
  std::string key;
  return ReadWholeFile(key_directory + "/" + name + kKeySuffix, key).empty() && IsWeakDeviceKey(key);
}

}  // namespace mkpkg
