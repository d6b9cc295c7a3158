#include "shell/command/parameter.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/ascii.h"
#include "util/decimal.h"
#include "util/fixed_text.h"
#include "util/result.h"

char g_szIPv4Address[16];
char g_szIPv4Mask[16];
char g_szIPv6Address[48];
char g_szIPv4MaskLen[8];
char g_szIPv6PreLen[8];
char g_szUserName[16];
char g_szPassword[16];
char g_szLocalFile[512];
char g_szRemoteFile[512];
char g_szSourceFile[512];
char g_szDestFile[512];
char g_szCount[16];
char g_szSize[16];
char g_szDiskName[16];
char g_szPkgFlie[128];

namespace {

constexpr std::size_t kMaxWord = 512;
constexpr std::size_t kMaxSignificantDigits = 10;
constexpr std::uint64_t kMinPrefix = 1;
constexpr std::uint64_t kMaxPrefix = 128;

// Rooms of the buffers that take less than their size.
constexpr std::size_t kMaskLenRoom = 4;
constexpr std::size_t kPrefixLenRoom = 5;
constexpr std::size_t kNumberRoom = 11;

/// Stores text in a buffer that is emptied first, all of it: of a longer password nothing stays behind a shorter one.
template <std::size_t kSize>
std::uint32_t RecordText(std::string_view text, char (&buffer)[kSize], std::size_t room = kSize) {
  std::memset(buffer, 0, kSize);
  CopyBounded(buffer, room, text);
  return kSuccess;
}

/// Converts to binary and prints again, so that one address has one spelling.
template <std::size_t kSize>
std::uint32_t RecordAddress(int family, const char* word, char (&buffer)[kSize]) {
  in6_addr address;  // the larger of the two families
  std::memset(buffer, 0, kSize);
  if (inet_pton(family, word, &address) != 1) return ESH_ERR_FAIL;
  return inet_ntop(family, &address, buffer, kSize) != nullptr ? kSuccess : ESH_ERR_FAIL;
}

/// Prints the word's number ("031" becomes "31"), cut to the room.
template <std::size_t kSize>
std::uint32_t RecordNumber(const char* word, char (&buffer)[kSize], std::size_t room) {
  FixedText<kSize> text;
  text.Append("%d", static_cast<int>(std::strtol(word, nullptr, 10)));
  return RecordText(text.View(), buffer, room);
}

}  // namespace

std::uint16_t ESH_CheckIPv4(const char* text) {
  in_addr address;
  return inet_pton(AF_INET, text, &address) == 1 ? 1 : 0;
}

std::uint16_t ESH_CheckIPv6(const char* text) {
  in6_addr address;
  return inet_pton(AF_INET6, text, &address) == 1 ? 1 : 0;
}

std::uint16_t ESH_CheckIPv6Prefix(const char* text) {
  const char* slash = std::strchr(text, '/');
  if (slash == nullptr) return 0;
  FixedText<INET6_ADDRSTRLEN> address;
  address.AppendText({text, static_cast<std::size_t>(slash - text)});
  if (address.Truncated() || ESH_CheckIPv6(address.Text()) == 0) return 0;
  std::uint64_t length = 0;
  return ReadDecimal(slash + 1, length) && length >= kMinPrefix && length <= kMaxPrefix ? 1 : 0;
}

std::uint16_t ESH_CheckInteger(const char* text, std::uint64_t min, std::uint64_t max) {
  std::string_view digits(text);
  if (!std::all_of(digits.begin(), digits.end(), IsDigit)) return 0;
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  if (digits.size() > kMaxSignificantDigits) return 0;
  std::uint64_t number = 0;
  for (const char digit : digits) number = number * 10 + static_cast<std::uint64_t>(digit - '0');
  return min <= number && number <= max ? 1 : 0;
}

std::uint16_t ESH_CheckString(const char* text, std::uint64_t min, std::uint64_t max) {
  const std::string_view word(text);
  if (word.size() < min || word.size() > max || word.size() > kMaxWord) return 0;
  return std::all_of(word.begin(), word.end(), IsPrintable) ? 1 : 0;
}

std::uint16_t ESH_Variable(const char* text) {
  const std::string_view word(text);
  const bool address = word == "X.X.X.X" || word == "X:X::X:X" || word == "X:X::X:X/M";
  return address || word.starts_with("INTEGER") || word.starts_with("STRING") ? 1 : 0;
}

std::uint32_t ESH_RecordIPv4(const char* word) { return RecordAddress(AF_INET, word, g_szIPv4Address); }

std::uint32_t ESH_RecordIPv4Mask(const char* word) { return RecordAddress(AF_INET, word, g_szIPv4Mask); }

std::uint32_t ESH_RecordIPv6(const char* word) { return RecordAddress(AF_INET6, word, g_szIPv6Address); }

std::uint32_t ESH_RecordIPv4MaskLen(const char* word) { return RecordNumber(word, g_szIPv4MaskLen, kMaskLenRoom); }

std::uint32_t ESH_RecordIPv6PreLen(const char* word) { return RecordNumber(word, g_szIPv6PreLen, kPrefixLenRoom); }

std::uint32_t ESH_RecordUserName(const char* word) { return RecordText(word, g_szUserName); }

std::uint32_t ESH_RecordPassword(const char* word) { return RecordText(word, g_szPassword); }

std::uint32_t ESH_RecordLocalFile(const char* word) { return RecordText(word, g_szLocalFile); }

std::uint32_t ESH_RecordRemoteFile(const char* word) { return RecordText(word, g_szRemoteFile); }

std::uint32_t ESH_RecordSourceFile(const char* word) { return RecordText(word, g_szSourceFile); }

std::uint32_t ESH_RecordDestFile(const char* word) { return RecordText(word, g_szDestFile); }

std::uint32_t ESH_RecordCount(const char* word) { return RecordText(word, g_szCount, kNumberRoom); }

std::uint32_t ESH_RecordSize(const char* word) { return RecordText(word, g_szSize, kNumberRoom); }

std::uint32_t ESH_RecordDiskName(const char* word) { return RecordText(word, g_szDiskName); }

std::uint32_t ESH_RecordPkgFile(const char* word) { return RecordText(word, g_szPkgFlie); }
