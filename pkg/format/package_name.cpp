#include "pkg/format/package_name.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/ascii.h"

std::uint16_t ESH_FilterFile(const char* name, const char* suffix, std::size_t maxLength) {
  const std::string_view text(name);
  const std::size_t dot = text.rfind('.');
  return text.size() <= maxLength && text.size() > std::strlen(suffix) && dot != std::string_view::npos &&
                 EqualsIgnoringCase(text.substr(dot), suffix)
             ? 1
             : 0;
}

bool HoldsAliasMark(const char* name) { return std::strchr(name, '~') != nullptr; }

bool IsPackageName(const char* name) {
  return ESH_FilterFile(name, kPackageSuffix, kMaxPackageName) == 1 && !HoldsAliasMark(name);
}

bool IsPlainImageName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         std::ranges::all_of(
             name, [](char c) { return IsLetterOrDigit(c) || c == '.' || c == '_' || c == '-' || c == '+'; });
}
