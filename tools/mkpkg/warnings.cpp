#include "tools/mkpkg/warnings.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "pkg/format/compatibility.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_name.h"
#include "pkg/format/package_text.h"
#include "pkg/format/product_code.h"
#include "tools/mkpkg/package_signer.h"
#include "util/ascii.h"

namespace mkpkg {
namespace {

constexpr std::size_t kMaxImageName = kImageNameRoom - 1;  // that install load takes
constexpr std::size_t kMaxVersion = kProductVersionRoom - 1;
constexpr std::string_view kMedium = "flash:/";
constexpr char kBootLine[] = "[boot]";

/// What an image must begin with to be what its suffix says.
struct SuffixRule {
  std::string_view suffix;
  std::string_view magic;
};
constexpr SuffixRule kSuffixRules[] = {{".gz", {"\x1F\x8B", 2}},
                                       {".lzma", {"\x5D\x00\x00", 3}},
                                       {".xz",
                                        {"\xFD"
                                         "7zXZ\x00",
                                         6}}};

using Lines = std::vector<std::string>;

std::size_t CountOf(const PackageModel& package, std::uint32_t id) {
  return static_cast<std::size_t>(std::ranges::count(package.files, id, &ContainedFile::id));
}

void CheckHead(const PackageModel& package, Lines& warnings) {
  if (package.head.package_type != kSystemPackage) warnings.push_back("\"install load\" takes packages of type 2 only");
  if (package.head.attributes != 0) warnings.push_back("\"install load\" takes packages with attribute 0 only");
  if (package.head.product_tag == kUnknownTag) warnings.push_back("product tag 0xFFFFFFFF fits no device");
  if (package.files.empty()) warnings.push_back("the package holds no files");
}

void CheckTexts(const PackageModel& package, Lines& warnings) {
  struct TextFile {
    std::uint32_t id;
    const char* name;
    const char* consequence;
  };
  constexpr TextFile kTexts[] = {
      {kCompatibilityFile, "compatibility list", "\"install load\" will refuse the package"},
      {kDescriptionFile, "description", "\"display install package\" will fail"},
  };
  for (const TextFile& text : kTexts) {
    const std::size_t count = CountOf(package, text.id);
    if (count == 0) warnings.push_back(std::string("there is no ") + text.name + ": " + text.consequence);
    if (count > 1) warnings.push_back(std::string("there is more than one ") + text.name + ": the first one counts");
    const ContainedFile* file = package.Find(text.id);
    if (file != nullptr && file->begin.find('\0') != std::string::npos)
      warnings.push_back(std::string("the ") + text.name + " holds a NUL byte: what follows it is not read");
  }
}

void CheckCompatibility(const PackageModel& package, Lines& warnings) {
  const ContainedFile* file = package.Find(kCompatibilityFile);
  if (file == nullptr || !file->problem.empty()) return;
  Lines lines = LinesOf(file->begin);
  for (std::string& line : lines) line = TrimmedLine(line);
  const auto boot = std::find(lines.begin(), lines.end(), kBootLine);
  if (boot == lines.end())
    warnings.push_back("the compatibility list has no line \"[boot]\": no boot image is compatible");
  else if (std::all_of(boot + 1, lines.end(), [](const std::string& line) { return line.empty(); }))
    warnings.push_back("the compatibility list names nothing after \"[boot]\": no boot image is compatible");
}

void CheckDescription(const PackageModel& package, Lines& warnings) {
  const ContainedFile* file = package.Find(kDescriptionFile);
  if (file == nullptr || !file->problem.empty()) return;
  std::size_t versions = 0;
  for (const std::string& raw : LinesOf(file->begin)) {
    const std::string line = TrimmedLine(raw);
    if (!BeginsIgnoringCase(line, kProductVersion)) continue;
    ++versions;
    if (line.size() - std::string_view(kProductVersion).size() > kMaxVersion)
      warnings.push_back("the product version is longer than 64 bytes: a device cuts it");
  }
  if (versions == 0) {
    warnings.push_back(
        "the description has no line \"Product version: \": a line of the compatibility list must be all of a boot "
        "image's version");
  }
  if (versions > 1) warnings.push_back("the description has more than one product version: the last one counts");
}

void CheckImageName(const ContainedFile& image, Lines& warnings) {
  const std::string& name = image.name;
  if (!IsPlainImageName(name)) {
    warnings.push_back("image " + name +
                       ": a device refuses a name of more than letters, digits, \".\", \"_\", \"-\" and \"+\"");
    return;
  }
  if (name.size() > kMaxImageName) {
    warnings.push_back("image " + name + ": a device cuts a name of more than " + std::to_string(kMaxImageName) +
                       " bytes");
  }
  const std::string_view suffix = std::string_view(name).substr(std::min(name.rfind('.'), name.size()));
  const auto* rule = std::ranges::find(kSuffixRules, suffix, &SuffixRule::suffix);
  if (rule == std::end(kSuffixRules)) {
    warnings.push_back("image " + name +
                       ": only \".gz\", \".lzma\" and \".xz\" are unpacked; a device leaves this one "
                       "out and goes on without a word");
  } else if (image.problem.empty() && !image.begin.starts_with(rule->magic)) {
    warnings.push_back("image " + name + ": the data are not what the suffix says; a device does not unpack them");
  }
}

void CheckImages(const PackageModel& package, Lines& warnings) {
  if (CountOf(package, kSystemImageFile) == 0 && package.head.package_type == kSystemPackage)
    warnings.push_back("there is no image: \"install load\" will fail");
  std::vector<std::uint32_t> seen;
  for (const ContainedFile& file : package.files) {
    if (file.id != kSystemImageFile || !file.has_head) continue;
    CheckImageName(file, warnings);
    if (file.device_code == kUnknownTag)
      warnings.push_back("image " + file.name + ": device tag 0xFFFFFFFF fits no device");
    if (std::find(seen.begin(), seen.end(), file.device_code) != seen.end()) {
      warnings.push_back("image " + file.name + ": an earlier one has the same device tag " +
                         HexWord(file.device_code) + " and is taken");
    }
    seen.push_back(file.device_code);
    if (file.is_measured && file.problem.empty() && !file.room)
      warnings.push_back("image " + file.name + ": the data are no whole cpio archive");
  }
}

void CheckData(const PackageModel& package, Lines& warnings) {
  for (const ContainedFile& file : package.files)
    if (!file.problem.empty())
      warnings.push_back("file " + HexWord(file.id) + " " + file.name + " gives a device no data: " + file.problem);
}

void CheckFileName(const std::string& name, Lines& warnings) {
  if (ESH_FilterFile(name.c_str(), kPackageSuffix, name.size()) == 0)
    warnings.push_back("the file name does not end in \".bin\": a device refuses it");
  if (HoldsAliasMark(name.c_str())) warnings.push_back("the file name holds \"~\": a device refuses it");
  if (name.size() > kMaxTypedPackage)
    warnings.push_back("the file name is longer than 63 characters: it cannot be typed on a device");
  if (name.size() + kMedium.size() > kLoadRecordSize)
    warnings.push_back("the path flash:/" + name + " is longer than 64 bytes: the device's record of it is cut");
}

void CheckSignature(const PackageModel& package, Lines& warnings) {
  const bool is_signed = package.IsSignedInHead() ? package.head.signature_length != 0 : !package.trailer.empty();
  if (!is_signed) warnings.push_back("the package is not signed: see \"mkpkg sign --help\"");
  if (!is_signed || package.IsSignedInHead()) return;
  const std::string reason = ReasonAgainstKeyName(TrailerField(package.trailer, kKeyLabel));
  if (!reason.empty()) warnings.push_back("no device finds the key: " + reason);
}

}  // namespace

std::vector<std::string> WarningsFor(const PackageModel& package, const std::string& file_name) {
  Lines warnings;
  CheckFileName(file_name, warnings);
  CheckHead(package, warnings);
  CheckData(package, warnings);
  CheckTexts(package, warnings);
  CheckCompatibility(package, warnings);
  CheckDescription(package, warnings);
  CheckImages(package, warnings);
  return warnings;
}

std::vector<std::string> AllWarningsFor(const PackageModel& package, const std::string& file_name) {
  Lines warnings = WarningsFor(package, file_name);
  CheckSignature(package, warnings);
  return warnings;
}

}  // namespace mkpkg
