#include "pkg/identity/version_file.h"

#include <algorithm>
#include <string_view>

#include "pkg/format/package_text.h"
#include "pkg/format/product_code.h"
#include "pkg/identity/keyed_line.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kBuildTime[] = "PkgTime: ";
/// Where the year stands behind the key, counted from 0: "Mar 14 2026 10:20:30", or with the day of the week before it.
constexpr std::size_t kYearWord = 2;
constexpr std::size_t kWordsWithWeekday = 5;

/// A blank-separated word of a line, counted from 0; empty when there are fewer.
std::string_view NthWord(std::string_view line, std::size_t number) {
  constexpr std::string_view kBlanks = " \t";
  for (;; --number) {
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    const std::size_t length = std::min(line.find_first_of(kBlanks), line.size());
    if (number == 0 || line.empty()) return line.substr(0, length);
    line.remove_prefix(length);
  }
}

}  // namespace

std::uint32_t GetBootBinPkgInfo(const char* key, char* value) {
  return ReadKeyedLine(kVersionFile, key, kPkgInfoRoom, value);
}

void GetVersion(std::size_t size, char* text) {
  char platform[kPkgInfoRoom];
  char product[kPkgInfoRoom];
  FixedText<sizeof("Version , ") + 2 * kPkgInfoRoom> version;
  if (GetBootBinPkgInfo(kPlatformVersion, platform) == kSuccess &&
      GetBootBinPkgInfo(kProductVersion, product) == kSuccess)
    version.Append("Version %s, %s", platform, product);
  CopyBounded(text, size, version.View());
}

std::uint32_t ESH_GetCompileTimeFromBoot(char* year) {
  char time[kPkgInfoRoom];
  const std::uint32_t result = GetBootBinPkgInfo(kBuildTime, time);
  const bool has_weekday = !NthWord(time, kWordsWithWeekday - 1).empty();
  CopyBounded(year, kYearRoom, NthWord(time, has_weekday ? kYearWord + 1 : kYearWord));
  return result == ESH_ERR_FAIL ? kSuccess : result;
}
