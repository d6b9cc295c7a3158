#include "pkg/identity/version_display.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "pkg/identity/corporation_tables.h"
#include "pkg/identity/product_identity.h"
#include "pkg/identity/system_identity.h"
#include "pkg/identity/version_file.h"
#include "shell/command/command_table.h"
#include "term/pager.h"
#include "util/regular_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kBanner[] = "%s %s Software\r\n";
constexpr char kDurellBanner[] = "Tessaro Software\r";
constexpr char kUptime[] = "%s uptime is %d %s, %d %s, %d %s, %d %s\r\n";
constexpr char kUptimeFile[] = "/proc/uptime";
constexpr char kCopyrightFile[] = "/etc/pkg/license/copyright";
constexpr std::size_t kUptimeRoom = 64;
constexpr std::size_t kBriefVersionRoom = 4096;

constexpr CommandRow kIdentityCommands[] = {
    {ESH_ProcDisVersion, kAllViews, {kDisplay, Word("version", "System hardware and software version information")}},
    {ESH_ProcDisCopyright,
     kAllViews,
     {kDisplay, Word("copyright", "System hardware and software copyright information")}},
};
static_assert(WellFormed(kIdentityCommands));

constexpr long kMinute = 60;  // in seconds
constexpr long kHour = 60 * kMinute;
constexpr long kDay = 24 * kHour;
constexpr long kWeek = 7 * kDay;

void PrintBanner() {
  std::uint32_t corporation = 0;
  ESH_GetOemCorp(&corporation);
  if (corporation == kDurell) {
    std::puts(kDurellBanner);
    return;
  }
  char corporation_name[kIdentityRoom];
  char software_name[kIdentityRoom];
  ESH_GetCorpName(corporation_name);
  ESH_GetSoftwareName(software_name);
  std::printf(kBanner, corporation_name, software_name);
}

/// @return false when the kernel does not tell.
bool ReadUptime(long& seconds) {
  char text[kUptimeRoom];
  const UniqueFd file(open(kUptimeFile, O_RDONLY | O_CLOEXEC));
  const ssize_t length = read(file.Get(), text, sizeof(text) - 1);
  if (length < 0) return false;
  text[length] = '\0';
  seconds = std::strtol(text, nullptr, 10);  // the number ends at the decimal point or the blank
  return true;
}

const char* Counted(int count, const char* singular, const char* plural) { return count == 1 ? singular : plural; }

void PrintUptime() {
  long seconds = 0;
  if (!ReadUptime(seconds)) return;
  const int weeks = static_cast<int>(seconds / kWeek);
  const int days = static_cast<int>(seconds % kWeek / kDay);
  const int hours = static_cast<int>(seconds % kDay / kHour);
  const int minutes = static_cast<int>(seconds % kHour / kMinute);
  char product[kIdentityRoom];
  ESH_GetProductName(product);
  std::printf(kUptime, product, weeks, Counted(weeks, "week", "weeks"), days, Counted(days, "day", "days"), hours,
              Counted(hours, "hour", "hours"), minutes, Counted(minutes, "minute", "minutes"));
}

}  // namespace

void ESH_DVER_DisplayVersion() {
  PrintBanner();
  char copyright[kIdentityRoom];
  ESH_GetCopyright(copyright);
  std::printf("%s\r\n", copyright);
  PrintUptime();
  std::printf("\r\n");
  DisplayPkgInfoForDver();
}

void DisplayPkgInfoForDver() {
  char boot_image[kBootImageNameRoom];
  ESH_GetBootImageName(boot_image);
  std::printf("Boot image: %s\r\n", boot_image);
  char version[kPkgInfoRoom];
  ESH_GetSoftVersion(sizeof(version), version);
  std::printf("Boot image version: %s\r\n", version);
  char brief[kBriefVersionRoom];
  ESH_GetBriefVerInfo(sizeof(brief), brief);
  std::printf("\r\n%s\r\n", brief);
}

void RegisterIdentityCommands() { RegisterCommands(kIdentityCommands); }

std::uint32_t ESH_ProcDisVersion() {
  ESH_DVER_DisplayVersion();
  return kSuccess;
}

std::uint32_t ESH_ProcDisCopyright() {
  std::size_t size = 0;
  const UniqueText text(FileReadWhole(kCopyrightFile, &size));
  if (text != nullptr) (void)ESH_OutString(text.get());  // a reader who has seen enough is no failure
  return kSuccess;
}
