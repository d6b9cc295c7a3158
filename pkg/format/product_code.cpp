#include "pkg/format/product_code.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "util/regular_file.h"

std::uint32_t g_uiProductCode = kUnknownTag;
std::uint32_t g_uiDeviceCode = kUnknownTag;

namespace {

constexpr int kLineRoom = 128;

/// Reads "NAME : 0x%x", where blanks stand for any, or none.
std::uint32_t ParseTag(const char* line, std::string_view name) {
  std::uint32_t tag = kUnknownTag;
  // What %x makes of a number is what the devices' files were written for.  NOLINTNEXTLINE(cert-err34-c)
  return std::strncmp(line, name.data(), name.size()) == 0 && std::sscanf(line + name.size(), " : 0x%x", &tag) == 1
             ? tag
             : kUnknownTag;
}

std::uint32_t Cached(std::uint32_t& code, const char* name) {
  if (code == kUnknownTag) code = ReadVersionTag(kVersionFile, name);
  return code;
}

}  // namespace

std::uint32_t ReadVersionTag(const char* version_file, const char* name) {
  const UniqueFile file = OpenRegularFile(version_file, Links::kFollow, nullptr);
  char line[kLineRoom];
  while (file != nullptr && std::fgets(line, sizeof(line), file.get()) != nullptr)
    if (strcasestr(line, name) != nullptr) return ParseTag(line, name);
  return kUnknownTag;
}

std::uint32_t ProductCode() { return Cached(g_uiProductCode, kProductTagName); }

std::uint32_t DeviceCode() { return Cached(g_uiDeviceCode, kDeviceTagName); }
