#include "pkg/identity/product_identity.h"

#include <algorithm>
#include <string_view>

#include "pkg/format/package_text.h"
#include "pkg/identity/corporation_tables.h"
#include "pkg/identity/keyed_line.h"
#include "pkg/identity/oem_file.h"
#include "pkg/identity/system_identity.h"
#include "pkg/identity/version_file.h"
#include "util/fixed_text.h"
#include "util/regular_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

OEM_CONSUMER_INFO_S g_stOemConsumerInfo;
pthread_once_t g_stOemDataLock = PTHREAD_ONCE_INIT;

namespace {

constexpr char kOemFile[] = "/etc/oem";
constexpr char kCorporationFile[] = "/etc/oemcorp";
constexpr char kDefaultSectionKey[] = "default-oem: ";
constexpr char kSoftwareNameKey[] = "softwareName: ";
constexpr char kCopyrightKey[] = "copyright: ";

constexpr char kDefaultSection[] = "[default]";
constexpr char kUnknownVersion[] = "7.10";
constexpr char kTalvoFirstYear[] = "Copyright (c) 2014 Talvo Technologies. All rights reserved.";

/// An object identifier in brackets, with up to 20 digits and a dot for each part.
constexpr std::size_t kSectionRoom = kMaxObjectIdParts * 21 + 3;

/// Which default section goes with the first parts of a device's object identifier; the first that fits counts.
struct DefaultSection {
  std::string_view prefix;
  const char* section;
};

constexpr DefaultSection kDefaultSections[] = {
    {"[1.3.6.1.4.1.47213.11", "[default-Kelvane]"},     {"[1.3.6.1.4.1.38.2.3.7.15.1", "[default-Kelvane]"},
    {"[1.3.6.1.4.1.206.1", "[default-Durell]"},         {"[1.3.6.1.4.1.61447", "[default-Pellam]"},
    {"[1.3.6.1.4.1.47213.12.1.1.", "[default-Sorvik]"}, {"[1.3.6.1.4.1.47213.12.1.2.", "[default-Brenna]"},
    {"[1.3.6.1.4.1.47213.12.1.4.", "[default-Talvo]"},  {"[1.3.6.1.4.1.5823", "[default-Morrel]"},
};

void SetDefaults(OEM_CONSUMER_INFO_S& info) {
  info = {.sysObjectID = {},
          .uiCorpId = 0,
          .sysDescr = "Ostrel Tessaro Platform Software Version 7.1",
          .sysContact = "Ostrel Networks Ltd.",
          .sysLocation = "Utrecht, The Netherlands",
          .sysName = "Ostrel",
          .productName = "Ostrel",
          .corpName = "Ostrel",
          .corpIDMac = {0x02, 0x5A, 0xC1},
          .bridgeMac = {0x02, 0x5A, 0xC1, 0x07, 0xF2, 0x0E},
          .tolkMac = {}};
  std::ranges::copy(info.bridgeMac, info.tolkMac);
}

/// Reads the device's object identifier into the record and writes it as a section name, which is empty when the
/// kernel does not tell.
void TakeObjectId(OEM_CONSUMER_INFO_S& info, TextBuilder& section) {
  std::size_t size = sizeof(info.sysObjectID);
  if (ESH_GetSysObjectID(size, info.sysObjectID) != kSuccess) return;
  const std::size_t last = size / sizeof(info.sysObjectID[0]) - 1;
  section.Append("%c", '[');
  for (std::size_t i = 0; i < last; ++i) section.Append("%lu.", info.sysObjectID[i]);
  section.Append("%lu%c", info.sysObjectID[last], ']');
}

/// @param corporation_section room for the name that the corporation file may give.
const char* ChooseDefaultSection(std::string_view own_section, char (&corporation_section)[kIdentityRoom]) {
  for (const DefaultSection& choice : kDefaultSections)
    if (own_section.starts_with(choice.prefix)) return choice.section;
  (void)GetDefaultInfo(kDefaultSectionKey, corporation_section);  // empty when there is none
  return corporation_section[0] != '\0' ? corporation_section : kDefaultSection;
}

/// Puts the build year into a copyright line. The line may come from a file, so it is no format for printf(3).
void AppendWithYear(std::string_view line, std::string_view year, TextBuilder& text) {
  constexpr std::string_view kYearMark = "%s";
  const std::size_t mark = line.find(kYearMark);
  text.AppendText(line.substr(0, mark));
  if (mark != std::string_view::npos) {
    text.AppendText(year);
    text.AppendText(line.substr(mark + kYearMark.size()));
  }
}

const char* SlotOrNothing(const char* const (&table)[kCorporations], std::uint32_t id) {
  return id < kCorporations && table[id] != nullptr ? table[id] : "";
}

/// The copyright of the description, which unlike that of the displays comes from the file for all later corporations.
void DescriptionCopyright(std::uint32_t id, TextBuilder& text) {
  char year[kYearRoom];
  (void)ESH_GetCompileTimeFromBoot(year);  // empty when it is not known
  char from_file[kIdentityRoom];
  (void)GetDefaultInfo(kCopyrightKey, from_file);  // empty when there is none
  AppendWithYear(id > kLastBuiltInCorporation ? from_file : SlotOrNothing(g_apcCopyRight, id), year, text);
}

const OEM_CONSUMER_INFO_S& Identity() {
  pthread_once(&g_stOemDataLock, setGlobalOemDataLocked);
  return g_stOemConsumerInfo;
}

}  // namespace

void setGlobalOemDataLocked() {
  SetDefaults(g_stOemConsumerInfo);
  std::size_t size = 0;
  const UniqueText text(FileReadWhole(kOemFile, &size));
  if (text != nullptr) parseOemFile(text.get());
}

void parseOemFile(const char* text) {
  OEM_CONSUMER_INFO_S& info = g_stOemConsumerInfo;
  FixedText<kSectionRoom> own_section;
  TakeObjectId(info, own_section);
  char corporation_section[kIdentityRoom];
  ApplyOemSection(text, ChooseDefaultSection(own_section.View(), corporation_section), info);
  ApplyOemSection(text, own_section.View(), info);
  char version[sizeof(info.sysDescr)];
  GetVersion(sizeof(version), version);
  FixedText<sizeof(info.sysDescr)> copyright;
  DescriptionCopyright(info.uiCorpId, copyright);
  ExpandMarkers({version, info.productName, copyright.View()}, info);
}

std::uint32_t GetDefaultInfo(const char* key, char* value) {
  return ReadKeyedLine(kCorporationFile, key, kIdentityRoom, value);
}

void ESH_GetOemCorp(std::uint32_t* out) { *out = Identity().uiCorpId; }

void ESH_GetCorpName(char* name) { CopyBounded(name, kIdentityRoom, Identity().corpName); }

void ESH_GetProductName(char* name) { CopyBounded(name, kIdentityRoom, Identity().productName); }

void ESH_GetSoftwareName(char* name) {
  const std::uint32_t id = Identity().uiCorpId;
  if (id > kLastBuiltInCorporation)
    GetSoftwareNameWithFile(name);
  else
    CopyBounded(name, kIdentityRoom, SlotOrNothing(g_apcSoftwareName, id));
}

void GetSoftwareNameWithFile(char* name) { (void)GetDefaultInfo(kSoftwareNameKey, name); }  // empty when there is none

void ESH_GetCopyright(char* line) {
  const std::uint32_t id = Identity().uiCorpId;
  char year[kYearRoom];
  (void)ESH_GetCompileTimeFromBoot(year);  // empty when it is not known
  const std::string_view slot = SlotOrNothing(g_apcCopyRight, id);
  FixedText<kIdentityRoom> text;
  if (id == kTalvo && slot.find(year) != std::string_view::npos)
    text.AppendText(kTalvoFirstYear);
  else
    AppendWithYear(slot, year, text);
  CopyBounded(line, kIdentityRoom, text.View());
}

void ESH_GetSoftVersion(std::size_t size, char* version) {
  char value[kPkgInfoRoom];
  const char* key = Identity().uiCorpId == kDurell ? kProductVersion : kPlatformVersion;
  CopyBounded(version, size, GetBootBinPkgInfo(key, value) == kSuccess ? value : kUnknownVersion);
}
