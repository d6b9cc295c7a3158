#include "pkg/format/compatibility.h"

#include <string_view>

#include "pkg/format/contained_file.h"
#include "pkg/format/package_text.h"
#include "util/ascii.h"
#include "util/fixed_text.h"

namespace {

constexpr std::string_view kBootSection = "[boot]";

/// Whether a line of the list names the running version: alone or, when there is a product version, with a hyphen and
/// that behind it.
bool IsCandidate(std::string_view line, std::string_view product_version, std::string_view running) {
  if (product_version.empty()) return running == line;
  const bool begins = running.starts_with(line);
  const std::string_view rest = begins ? running.substr(line.size()) : "";
  return rest.starts_with('-') && rest.substr(1) == product_version;
}

/// Builds "PLATFORM-PRODUCT" from a description. Nothing behind the product version is read.
void JoinVersions(READ_BUFF_S& description, TextBuilder& version) {
  constexpr std::string_view kPlatform(kPlatformVersion);
  constexpr std::string_view kProduct(kProductVersion);
  bool has_platform = false;
  for (const char* text = ReadBuffGets(&description); text != nullptr; text = ReadBuffGets(&description)) {
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

bool HasModestDescription(PKG_READER_S* boot_image) {
  const PackageFileEntry* entry = FindFile(*boot_image, kDescriptionFile);
  const UniqueFileHead head(entry == nullptr ? nullptr : FileHeadCreateByFileDesc(boot_image, entry));
  return head != nullptr && head->stored_size <= kMostBootDescription &&
         (head->compression == kStoredAsIs || head->unpacked_size <= kMostBootDescription);
}

void ReadProductVersion(READ_BUFF_S* description, char* version) {
  constexpr std::string_view kKey(kProductVersion);
  version[0] = '\0';
  if (description == nullptr) return;
  for (char* text = ReadBuffGets(description); text != nullptr; text = ReadBuffGets(description)) {
    const std::string_view line(TrimLine(text));
    if (BeginsIgnoringCase(line, kKey)) CopyBounded(version, kProductVersionRoom, line.substr(kKey.size()));
  }
}

void ReadBootVersion(READ_BUFF_S* description, char* version) {
  version[0] = '\0';
  if (description == nullptr) return;
  FixedText<kRunningVersionRoom> joined;
  JoinVersions(*description, joined);
  CopyBounded(version, kRunningVersionRoom, joined.View());
}

const char* NextBootLine(READ_BUFF_S* list, bool& in_section) {
  for (char* text = ReadBuffGets(list); text != nullptr; text = ReadBuffGets(list)) {
    const char* line = TrimLine(text);
    in_section = in_section || line == kBootSection;
    if (in_section) return line;
  }
  return nullptr;
}

bool IsCompliant(READ_BUFF_S* list, const char* product_version, const char* running) {
  if (running[0] == '\0') return false;
  bool in_section = false;
  for (const char* line = NextBootLine(list, in_section); line != nullptr; line = NextBootLine(list, in_section))
    if (IsCandidate(line, product_version, running)) return true;
  return false;
}
