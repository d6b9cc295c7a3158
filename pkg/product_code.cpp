#include "pkg/product_code.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/regular_file.h"

std::uint32_t g_uiProductCode = kUnknownTag;
std::uint32_t g_uiDeviceCode = kUnknownTag;

namespace {

constexpr int kLineRoom = 128;

/// Passes over `text`, and with it any blanks before it. @return none when something else stands there.
const char* Skip(const char* line, std::string_view text) {
  while (std::isspace(static_cast<unsigned char>(*line)) != 0) {
    ++line;
  }
  return std::strncmp(line, text.data(), text.size()) == 0 ? line + text.size() : nullptr;
}

std::uint32_t ParseTag(const char* line, std::string_view name) {
  const char* rest = line;
  if (std::strncmp(line, name.data(), name.size()) != 0) {
    return kUnknownTag;
  }
  rest += name.size();
  for (const char* part : {":", "0x"}) {
    rest = Skip(rest, part);
    if (rest == nullptr) {
      return kUnknownTag;
    }
  }
  if (std::isxdigit(static_cast<unsigned char>(*rest)) == 0) {
    return kUnknownTag;
  }
  errno = 0;
  const unsigned long tag = std::strtoul(rest, nullptr, 16);
  return errno != 0 || tag > UINT32_MAX ? kUnknownTag : static_cast<std::uint32_t>(tag);
}

std::uint32_t Cached(std::uint32_t& code, const char* name) {
  if (code == kUnknownTag) {
    code = ReadVersionTag(kVersionFile, name);
  }
  return code;
}

}  // namespace

std::uint32_t ReadVersionTag(const char* version_file, const char* name) {
  const UniqueFile file = OpenRegularFile(version_file, Links::kFollow, nullptr);
  char line[kLineRoom];
  while (file != nullptr && std::fgets(line, sizeof(line), file.get()) != nullptr) {
    if (strcasestr(line, name) != nullptr) {
      return ParseTag(line, name);
    }
  }
  return kUnknownTag;
}

std::uint32_t ProductCode() { return Cached(g_uiProductCode, kProductTagName); }

std::uint32_t DeviceCode() { return Cached(g_uiDeviceCode, kDeviceTagName); }
