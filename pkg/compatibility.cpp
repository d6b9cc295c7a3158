#include "pkg/compatibility.h"

#include <string_view>

#include "pkg/package_format.h"
#include "pkg/package_text.h"
#include "pkg/version_file.h"
#include "util/ascii.h"
#include "util/fixed_text.h"

namespace {

constexpr std::string_view kBootSection = "[boot]";

/// Whether a version is the line, or with a product version the line, a hyphen and that.
bool IsCandidate(std::string_view line, std::string_view product_version, std::string_view running) {
  if (product_version.empty()) {
    return running == line;
  }
  const bool begins = running.starts_with(line);
  const std::string_view rest = begins ? running.substr(line.size()) : "";
  return rest.starts_with('-') && rest.substr(1) == product_version;
}

}  // namespace

void ReadProductVersion(PKG_READER_S* package, char* version) {
  constexpr std::string_view kKey(kProductVersion);
  version[0] = '\0';
  const UniqueLines description = OpenPackageText(package, kDescriptionFile);
  if (description == nullptr) {
    return;
  }
  for (char* text = ReadBuffGets(description.get()); text != nullptr; text = ReadBuffGets(description.get())) {
    const std::string_view line(TrimLine(text));
    if (BeginsIgnoringCase(line, kKey)) {
      CopyBounded(version, kProductVersionRoom, line.substr(kKey.size()));
    }
  }
}

bool IsCompliant(READ_BUFF_S* list, const char* product_version, const char* running) {
  if (running[0] == '\0') {
    return false;
  }
  bool in_section = false;
  for (char* text = ReadBuffGets(list); text != nullptr; text = ReadBuffGets(list)) {
    const std::string_view line(TrimLine(text));
    in_section = in_section || line == kBootSection;
    if (in_section && IsCandidate(line, product_version, running)) {
      return true;
    }
  }
  return false;
}
