#include "pkg/install/package_description.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "fs/names/name_rules.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/package_text.h"
#include "pkg/identity/corporation_tables.h"
#include "pkg/identity/product_identity.h"
#include "pkg/install/package_check.h"
#include "pkg/install/progress_dots.h"
#include "shell/command/parameter.h"
#include "util/ascii.h"
#include "util/result.h"

const char* const g_apcDetailFilter[kDetailKeys] = {
    "[Component]",   "Component:",    "Description:",      "[Package]",        "Vendor:",         "Product:",
    "Service name:", "Version type:", "Platform version:", "Product version:", "Supported board:"};

namespace {

constexpr char kShownLine[] = "  %s\r\n";
constexpr std::string_view kRelease = "Version type: release";
constexpr std::string_view kPlatform = "Platform version:";
constexpr std::string_view kBoards = "Supported boards:";  // the last key may also stand in the plural
constexpr std::string_view kVendor = "Vendor:";
constexpr std::string_view kRenamedVendor = "Kelvane";
constexpr char kVendorNow[] = "Vendor: Vantrel";

/// Whether a line is shown to the customers of a corporation.
bool IsShown(std::string_view line, std::uint32_t corporation) {
  if (BeginsIgnoringCase(line, kRelease) || (corporation == kDurell && line.starts_with(kPlatform))) return false;
  return line.starts_with(kBoards) ||
         std::ranges::any_of(g_apcDetailFilter, [line](const char* key) { return line.starts_with(key); });
}

void PrintLine(const char* line) {
  const std::string_view text(line);
  const bool is_renamed = text.starts_with(kVendor) && text.find(kRenamedVendor) != std::string_view::npos;
  std::printf(kShownLine, is_renamed ? kVendorNow : line);
}

void PrintDescription(READ_BUFF_S* description) {
  std::uint32_t corporation = 0;
  ESH_GetOemCorp(&corporation);
  for (const char* line = ReadBuffGets(description); line != nullptr; line = ReadBuffGets(description))
    if (IsShown(line, corporation)) PrintLine(line);
  std::printf("\r\n");
}

}  // namespace

std::uint32_t ESH_PKG_DispPackageByName(const char* name) {
  char path[kNameRoom];
  if (name[0] == '\0' || PackageNameProcess(name, path) != kSuccess) return ESH_ERR_FAIL;
  const UniquePackage package(PackageReadFileCreateByFile(path));
  const PackageVerdict verdict = package == nullptr ? PackageVerdict::kCannotOpen : VerifyWithDots(name, package.get());
  if (verdict != PackageVerdict::kGood) return PrintRefusal(verdict, name);
  std::printf(kShownLine, name);
  const UniqueLines description = OpenPackageText(package.get(), kDescriptionFile);
  if (description == nullptr) return PrintRefusal(PackageVerdict::kDescription, name);
  PrintDescription(description.get());
  return kSuccess;
}

std::uint32_t ESH_ProcDisInstallPkg() { return ESH_PKG_DispPackageByName(g_szPkgFlie); }
