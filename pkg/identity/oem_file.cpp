#include "pkg/identity/oem_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "pkg/identity/corporation_tables.h"
#include "util/ascii.h"
#include "util/fixed_text.h"

const char* const g_apcKeyWordTab[kOemKeys] = {"oem",     "productName", "sysDescr",  "sysContact", "sysLocation",
                                               "sysName", "corpName",    "corpIDMac", "bridgeMac",  "tolkMac"};

namespace {

/// What begins a section, at the start of a line.
constexpr std::string_view kHeaders[] = {"[1.3.6.1.4.1.", "[default"};
constexpr std::string_view kLineEnds = "\r\n";
constexpr std::string_view kTrimmed = "\r\n ";
constexpr std::string_view kWrittenLineEnd = "\\r\\n";  // four characters
constexpr char kMacFormat[] = "%hhx-%hhx-%hhx-%hhx-%hhx-%hhx";
constexpr std::size_t kMacTextRoom = 64;

using SetField = void (*)(std::string_view value, OEM_CONSUMER_INFO_S& info);

bool BeginsLine(std::string_view text, std::size_t place) {
  return place == 0 || kLineEnds.find(text[place - 1]) != std::string_view::npos;
}

/// Where the first line begins, from `start` on, that starts with this text; npos when none does.
std::size_t FindAtLineStart(std::string_view text, std::string_view wanted, std::size_t start) {
  std::size_t place = text.find(wanted, start);
  while (place != std::string_view::npos && !BeginsLine(text, place)) place = text.find(wanted, place + 1);
  return place;
}

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kTrimmed);
  return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(kTrimmed) + 1 - begin);
}

/// The text between a section's header and the next one.
std::string_view SectionText(std::string_view text, std::string_view section) {
  const std::size_t header = FindAtLineStart(text, section, 0);
  if (section.empty() || header == std::string_view::npos) return "";
  const std::size_t begin = header + section.size();
  std::size_t end = text.size();
  for (const std::string_view next : kHeaders) end = std::min(end, FindAtLineStart(text, next, begin));
  return text.substr(begin, end - begin);
}

/// Copies a value, cut to its field. A line break in it is written as the characters "\r\n".
template <std::size_t kRoom>
void CopyValue(std::string_view value, char (&field)[kRoom]) {
  FixedText<kRoom> text;
  for (std::size_t line_end = value.find(kWrittenLineEnd); line_end != std::string_view::npos;
       line_end = value.find(kWrittenLineEnd)) {
    text.AppendText(value.substr(0, line_end));
    text.AppendText("\r\n");
    value.remove_prefix(line_end + kWrittenLineEnd.size());
  }
  text.AppendText(value);
  CopyText(field, text.View());
}

void SetCorporation(std::string_view value, OEM_CONSUMER_INFO_S& info) {
  for (std::uint32_t id = 0; id < kCorporations; ++id) {
    // The value may be the name's first characters.
    if (g_apcCorpName[id] != nullptr && BeginsIgnoringCase(g_apcCorpName[id], value)) {
      info.uiCorpId = id;
      return;
    }
  }
}

void CopyMac(std::string_view value, std::uint8_t (&field)[6]) {
  char text[kMacTextRoom];
  CopyText(text, value);
  std::uint8_t mac[6];
  if (std::sscanf(text, kMacFormat, &mac[0], &mac[1], &mac[2], &mac[3], &mac[4], &mac[5]) == 6)
    std::memcpy(field, mac, sizeof(mac));
}

struct Field {
  SetField set;
  bool is_cleared;  ///< by an empty value, which otherwise changes nothing
};

/// The fields of the keys, in their order.
constexpr Field kFields[kOemKeys] = {
    {SetCorporation, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.productName); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.sysDescr); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.sysContact); }, true},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.sysLocation); }, true},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.sysName); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyValue(value, info.corpName); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyMac(value, info.corpIDMac); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyMac(value, info.bridgeMac); }, false},
    {[](std::string_view value, OEM_CONSUMER_INFO_S& info) { CopyMac(value, info.tolkMac); }, false},
};

/// Where a key line begins, and where its value does.
struct KeyLine {
  std::size_t begin;
  std::size_t value;
};

constexpr KeyLine kNoKeyLine = {std::string_view::npos, std::string_view::npos};

/// The first line from `start` on that begins with this key, blanks and a colon.
KeyLine FindKeyLine(std::string_view section, std::string_view key, std::size_t start) {
  for (std::size_t begin = FindAtLineStart(section, key, start); begin != std::string_view::npos;
       begin = FindAtLineStart(section, key, begin + 1)) {
    const std::size_t colon = section.find_first_not_of(' ', begin + key.size());
    // The section's text begins in the middle of its header's line.
    if (begin > 0 && colon != std::string_view::npos && section[colon] == ':') return {begin, colon + 1};
  }
  return kNoKeyLine;
}

/// Where the next line with any of the keys begins; the section's end when there is none.
std::size_t NextKeyLine(std::string_view section, std::size_t start) {
  std::size_t next = section.size();
  for (const char* key : g_apcKeyWordTab) next = std::min(next, FindKeyLine(section.substr(0, next), key, start).begin);
  return next;
}

/// One of the markers in a description.
struct Marker {
  std::string_view name;
  std::string_view replacement;
  std::size_t place;
};

/// What stands between a marker and the next one in the text.
std::string_view TextBehind(const Marker& marker, std::string_view text, const Marker (&markers)[3]) {
  std::size_t end = text.size();
  for (const Marker& other : markers)
    if (other.place > marker.place) end = std::min(end, other.place);
  const std::size_t begin = marker.place + marker.name.size();
  return text.substr(begin, end - begin);
}

}  // namespace

void ApplyOemSection(std::string_view text, std::string_view section, OEM_CONSUMER_INFO_S& info) {
  const std::string_view fields = SectionText(text, section);
  for (std::size_t i = 0; i < kOemKeys; ++i) {
    const KeyLine line = FindKeyLine(fields, g_apcKeyWordTab[i], 0);
    if (line.begin == std::string_view::npos) continue;
    const std::string_view value = Trim(fields.substr(line.value, NextKeyLine(fields, line.value) - line.value));
    if (!value.empty() || kFields[i].is_cleared) kFields[i].set(value, info);
  }
}

void ExpandMarkers(const MarkerTexts& texts, OEM_CONSUMER_INFO_S& info) {
  char description[sizeof(info.sysDescr)];
  CopyText(description, info.sysDescr);
  const std::string_view text(description);
  const auto find = [text](std::string_view name, std::string_view replacement) {
    return Marker{name, replacement, text.find(name)};
  };
  const Marker markers[] = {find("[VERSION]", texts.version), find("[PRODUCTNAME]", texts.product_name),
                            find("[COPYRIGHT]", texts.copyright)};
  std::size_t first = text.size();
  for (const Marker& marker : markers) first = std::min(first, marker.place);
  FixedText<sizeof(info.sysDescr)> expanded;
  expanded.AppendText(text.substr(0, first));
  for (const Marker& marker : markers) {
    if (marker.place != std::string_view::npos) {
      expanded.AppendText(marker.replacement);
      expanded.AppendText(TextBehind(marker, text, markers));
    }
  }
  CopyText(info.sysDescr, expanded.View());
}
