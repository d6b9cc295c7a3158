#include "tools/mkpkg/device_verdict.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

#include "fs/names/dot_elimination.h"
#include "fs/names/name_rules.h"
#include "pkg/format/compatibility.h"
#include "pkg/format/contained_file.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/head_check.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_judge.h"
#include "pkg/format/package_name.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "tools/mkpkg/package_model.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/ascii.h"
#include "util/result.h"

namespace mkpkg {
namespace {

constexpr char kWrongParameter[] = " % Wrong parameter found at '^' position.";
constexpr char kTooMany[] = " % Too many parameters found at '^' position.";
/// What the names of media begin with. Which of them a device has, and how many units, nobody tells.
constexpr std::string_view kMedia[] = {"flash", "cf", "usb"};

/// What a device prints when it refuses, on one line.
std::string LineFor(PackageVerdict verdict, const std::string& name) {
  std::string all;
  for (const std::string& line : LinesOf(LineOfRefusal(verdict)))
    if (!line.empty()) all += (all.empty() ? "" : " ") + line;
  if (const std::size_t mark = all.find("%s"); mark != std::string::npos) all.replace(mark, 2, name);
  return all;
}

/// Whether a word names a place below the root of a medium that a device can have. A relative name counts as one on
/// flash:, where devices start.
bool IsTypable(const std::string& word) {
  const bool has_device = word.find(':') != std::string::npos;
  const std::string name = has_device ? word : "flash:/" + word;
  const std::string_view device = DeviceNameOf(name);
  const bool is_known = std::any_of(std::begin(kMedia), std::end(kMedia),
                                    [&](std::string_view medium) { return device.starts_with(medium); });
  char full[kNameRoom];
  return word.size() <= kMaxTypedPackage && std::all_of(word.begin(), word.end(), IsPrintable) && word[0] != '/' &&
         is_known && ESH_FS_IsValidFileName(name.c_str()) == kSuccess && IsValidDeviceName(device) &&
         eliminatePoint(("/mnt/" + name).c_str(), kMediumFloor, sizeof(full), full) == kSuccess &&
         !std::string_view(full).ends_with(':');
}

/// What the shell says to the name before a command sees it. @return no step when it is a name.
DeviceVerdict JudgeWord(const std::string& name) {
  const std::string word = name.substr(0, name.find(' '));
  if (!IsTypable(word)) {
    return {"typed-name", word + " is no name below a medium flash, cf or usb, of 63 characters at most",
            kWrongParameter};
  }
  if (word != name) return {"typed-name", "a name ends at its first blank", kTooMany};
  return {};
}

/// Opens a text of a package for reading line by line; none when it has no such text.
UniqueLines TextIn(PKG_READER_S* package, std::uint32_t id) {
  const PackageFileEntry* entry = FindFile(*package, id);
  const std::string text = entry == nullptr ? "" : ReadContained(package, *entry, false).begin;
  return UniqueLines(text.empty() ? nullptr : ReadBuffCreateByMem(text.data(), text.size()));
}

/// The device that the facts tell of, and a package on it.
class ToldDevice final : public LoadDevice {
 public:
  ToldDevice(const std::string& path, const DeviceFacts& facts) : facts_(facts) {
    PKG_READER_S* opened = nullptr;
    opened_ = IsPackageName(facts.typed_name.c_str()) ? OpenPackage(path.c_str(), opened) : PackageVerdict::kName;
    package_.reset(opened);
  }

  DeviceVerdict JudgeDisplay() {
    PackageVerdict verdict = opened_;
    if (verdict == PackageVerdict::kGood) verdict = Verify(package_.get());
    if (verdict == PackageVerdict::kGood && OpenText(package_.get(), kDescriptionFile) == nullptr)
      verdict = PackageVerdict::kDescription;
    return Told(verdict);
  }

  DeviceVerdict JudgeInstall() {
    if (!IsFirstUnit(DeviceNameOf(facts_.typed_name))) return Told(PackageVerdict::kFirstUnit);
    return Told(opened_ == PackageVerdict::kGood ? JudgeLoad(package_.get(), *this) : opened_);
  }

  /// The images that devices take, whatever their tag is; of a genuine package only.
  std::vector<TakenImage> TakenImages() {
    std::vector<TakenImage> images;
    for (std::uint32_t i = 0; verified_ == PackageVerdict::kGood && i < package_->head.file_count; ++i) {
      ContainedFile file;
      (void)OpenContained(package_.get(), package_->head.files[i], file);  // the judgement opens it again
      const bool is_known = std::ranges::find(images, file.device_code, &TakenImage::device_tag) != images.end();
      if (file.id == kSystemImageFile && file.has_head && !is_known &&
          JudgeImage(package_.get(), file.device_code, *this) == PackageVerdict::kGood)
        images.push_back({file.device_code, file.name});
    }
    return images;
  }

  /// The versions of boot images that may load it; of a genuine package only.
  std::vector<std::string> BootVersions() {
    std::vector<std::string> versions;
    const bool is_genuine = verified_ == PackageVerdict::kGood;
    const UniqueLines list = is_genuine ? TextIn(package_.get(), kCompatibilityFile) : nullptr;
    if (list == nullptr) return versions;
    char product[kProductVersionRoom];
    ReadProductVersion(TextIn(package_.get(), kDescriptionFile).get(), product);
    bool in_section = false;
    (void)NextBootLine(list.get(), in_section);  // "[boot]"
    for (const char* line = nullptr; (line = NextBootLine(list.get(), in_section)) != nullptr;)
      if (*line != '\0') versions.push_back(*product == '\0' ? line : std::string(line) + "-" + product);
    return versions;
  }

  PackageVerdict Verify(PKG_READER_S* package) override {
    const std::uint32_t product = ReadVersionTag(facts_.version_file.c_str(), kProductTagName);
    if (!verified_) verified_ = JudgePackage(package, product, facts_.key_directory.c_str());
    reason_ = product == kUnknownTag                  ? "the device's version file has no ProductTag"
              : verified_ == PackageVerdict::kKeyFile ? KeyFile() + " is missing, a symbolic link or of a wrong size"
                                                      : "";
    return *verified_;
  }
  UniqueLines OpenText(PKG_READER_S* package, std::uint32_t file_id) override { return TextIn(package, file_id); }
  void ReadRunningVersion(char* version) override {
    const UniquePackage boot(PackageReadFileCreateByFile(facts_.boot_image.c_str()));
    const bool is_readable = boot != nullptr && HasModestDescription(boot.get());
    ReadBootVersion(is_readable ? TextIn(boot.get(), kDescriptionFile).get() : nullptr, version);
    if (*version != '\0') reason_ = std::string("the compatibility list does not name boot image version ") + version;
  }
  void BeginImage() override { reason_.clear(); }
  std::uint32_t DeviceTag() override { return ReadVersionTag(facts_.version_file.c_str(), kDeviceTagName); }
  bool TakeImage(PKG_READER_S* package, const PackageFileEntry& entry) override {
    const ContainedFile image = ReadContained(package, entry, false);
    if (!image.problem.empty()) reason_ = "image " + image.name + " gives no data: " + image.problem;
    return image.problem.empty();
  }

 private:
  [[nodiscard]] DeviceVerdict Told(PackageVerdict verdict) const {
    if (verdict == PackageVerdict::kGood) return {};
    const auto& [named, step, reason] = VerdictTextOf(verdict);
    return {step, reason_.empty() ? reason : reason_, LineFor(verdict, facts_.typed_name)};
  }

  /// The file of the key that the package names.
  [[nodiscard]] std::string KeyFile() const {
    const std::string trailer = FindTrailer(fileno(package_->source.stream), SizeOfSource(package_->source));
    const bool is_in_head = package_->head.signature_format != kTrailerSigned;
    const std::string name = is_in_head ? kHeadFormKey : TrailerField(trailer, kKeyLabel);
    return facts_.key_directory + "/" + name + kKeySuffix;
  }

  const DeviceFacts& facts_;
  UniquePackage package_;
  PackageVerdict opened_;
  std::optional<PackageVerdict> verified_;  ///< once for both commands: it takes the longest
  std::string reason_;                      ///< of the verdict to come, where more can be said than its text does
};

}  // namespace

DeviceVerdicts JudgeForDevice(const std::string& path, const DeviceFacts& facts) {
  if (const DeviceVerdict typed = JudgeWord(facts.typed_name); !typed.Accepts()) return {typed, typed, {}, {}};
  ToldDevice device(path, facts);
  const DeviceVerdict display = device.JudgeDisplay();
  const DeviceVerdict install = device.JudgeInstall();
  return {display, install, device.TakenImages(), device.BootVersions()};
}

}  // namespace mkpkg
