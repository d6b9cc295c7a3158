#include "fs/names/name_rules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

/// Which characters a name may hold, one flag for each: a search for every character of 100,000 names takes its time.
using CharacterSet = std::array<bool, 256>;

constexpr unsigned char kLowestCharacter = 0x20;  // bytes above 0x7F are letters of UTF-8 names

constexpr CharacterSet AllBut(std::string_view forbidden) {
  CharacterSet set{};
  std::fill(set.begin() + kLowestCharacter, set.end(), true);
  for (const char character : forbidden) set[static_cast<unsigned char>(character)] = false;
  return set;
}

constexpr CharacterSet kAllowedInNames = AllBut("\"'*<>?\\|");
constexpr CharacterSet kAllowedInDeviceNames = AllBut("\"'*./<>?\\|");

/// A device may come with the media's folder before it, as "/mnt/flash:": folder and slash are then not checked.
constexpr std::string_view kUncheckedStart = "/mnt";
constexpr std::string_view kUncheckedDevice = "/mnt:";  // the folder and a character more: nothing is left to check

bool IsIn(const CharacterSet& set, char character) { return set[static_cast<unsigned char>(character)]; }

/// A "#" joins a slot's number to a device ("slot0#flash:"), whose ":" is still to come.
bool IsSlotMark(std::string_view device, std::size_t index) {
  return index > 0 && IsDigit(device[index - 1]) && device[index + 1] != '#';
}

bool IsAllowedInDeviceName(std::string_view device, std::size_t index) {
  const char character = device[index];
  if (character == ':') return index + 1 == device.size();
  if (character == '#') return IsSlotMark(device, index);
  return IsIn(kAllowedInDeviceNames, character);
}

bool IsBlank(char character) { return std::isspace(static_cast<unsigned char>(character)) != 0; }

std::uint32_t CopyWithin(std::string_view text, std::uint32_t* maxLength, char* output) {
  if (text.size() > *maxLength) return ESH_ERR_FAIL;
  std::memcpy(output, text.data(), text.size());
  output[text.size()] = '\0';
  *maxLength = static_cast<std::uint32_t>(text.size());
  return kSuccess;
}

/// Copies what stands between the quotes: \" is a quote and \\ a backslash, any other backslash is itself.
std::uint32_t Unescape(std::string_view inside, std::uint32_t* maxLength, char* output) {
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < inside.size(); ++i) {
    const bool escape = inside[i] == '\\' && i + 1 < inside.size() && (inside[i + 1] == '"' || inside[i + 1] == '\\');
    i += escape ? 1 : 0;
    if (length == *maxLength) return ESH_ERR_FAIL;
    output[length++] = inside[i];
    output[length] = '\0';
  }
  *maxLength = length;
  return kSuccess;
}

bool IsHiddenComponent(std::string_view component) { return component.starts_with('.') && !IsDotOrDotDot(component); }

}  // namespace

std::uint32_t ESH_FS_IsValidFileName(const char* name) {
  const std::size_t length = std::strlen(name);
  if (length == 0 || length > kMaxName) return ESH_ERR_FAIL;
  std::size_t component = 0;  // length of the component so far
  bool colon_seen = false;
  for (std::size_t i = 0; i < length; ++i) {
    const char next = name[i + 1];
    if (name[i] == '/') {
      if (next == '/') return ESH_ERR_FAIL;
      component = 0;
      continue;
    }
    if (!IsIn(kAllowedInNames, name[i]) || ++component > kMaxComponent) return ESH_ERR_FAIL;
    if (name[i] == ':') {
      if (colon_seen || i == 0 || (next != '/' && next != '\0')) return ESH_ERR_FAIL;
      colon_seen = true;
    }
  }
  return kSuccess;
}

bool IsValidDeviceName(std::string_view device) {
  if (device == kUncheckedDevice) return true;
  if (device.starts_with(kUncheckedStart)) device.remove_prefix(std::min(kUncheckedStart.size() + 1, device.size()));
  if (device.empty() || device.size() > kMaxComponent || device.back() != ':') return false;
  for (std::size_t i = 0; i < device.size(); ++i)
    if (!IsAllowedInDeviceName(device, i)) return false;
  return true;
}

std::string_view DeviceNameOf(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon + 1);
}

bool IsFirstUnit(std::string_view device) {
  const std::string_view unit = device.substr(0, device.find(':'));
  if (unit.empty() || !IsDigit(unit.back())) return true;
  const bool has_more_digits = unit.size() > 1 && IsDigit(unit[unit.size() - 2]);
  return unit.back() == '0' && !has_more_digits;
}

std::uint32_t ESH_IsVisibleFullFileName(const char* name) {
  std::string_view rest(name);
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    if (IsHiddenComponent(rest.substr(0, end))) return ESH_ERR_FAIL;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return kSuccess;
}

std::uint16_t ESH_IsExpectFile(const char* name) { return std::string_view(name).ends_with('/') ? 0 : 1; }

std::uint32_t ESH_FS_ConvertToValidStr(const char* typed, std::uint32_t length, std::uint32_t* maxLength,
                                       char* output) {
  if (!CopyBounded(output, 1, "") || length > kMaxTypedName) return ESH_ERR_FAIL;
  const std::string_view text(typed, length);
  const bool has_blank = std::any_of(text.begin(), text.end(), IsBlank);
  if (!has_blank) return CopyWithin(text, maxLength, output);
  const bool is_quoted = text.front() == '"' && text.back() == '"';
  return is_quoted ? Unescape(text.substr(1, length - 2), maxLength, output) : ESH_ERR_FAIL;
}

void ESH_GetParentDir(char* name) { name[std::string_view(name).rfind('/') + 1] = '\0'; }

std::string_view ParentOf(std::string_view full) { return full.substr(0, full.rfind('/')); }

std::string_view LastComponent(std::string_view name) { return name.substr(name.rfind('/') + 1); }

void MyStrlcpy(const char* source, std::size_t size, char* destination) {
  if (size == 0) return;
  std::strncpy(destination, source, size);  // which fills the rest with zeros
  destination[size - 1] = '\0';
}
