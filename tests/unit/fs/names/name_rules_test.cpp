#include "fs/names/name_rules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "fs/names/dot_elimination.h"
#include "util/result.h"

namespace {

void ExpectVerdict(bool accepted, std::initializer_list<std::string> names) {
  for (const std::string& name : names)
    EXPECT_EQ(ESH_FS_IsValidFileName(name.c_str()) == kSuccess, accepted) << '"' << name << '"';
}

TEST(FileName, HasLegalCharactersShapeAndLength) {
  const std::string longest(kMaxComponent, 'c');
  std::string name = "a";
  while (name.size() < kMaxName) name += "/a";
  ExpectVerdict(true, {"a", "flash:", "flash:/a b/\xc3\xa9\x7f", "/mnt/flash:/a/", "/", longest, name,
                       "a/" + longest + "/" + longest, longest.substr(1) + ":/" + longest});
  ExpectVerdict(false, {"", "a\x1f", "//a", "a//b", "a/b//", ":", ":/a", "flash:a", "a:/b:/c", "a::", longest + "c",
                        "a/" + longest + "c/b", longest + ":/a", name + "a"});
  for (const char forbidden : std::string("\"'*<>?\\|")) ExpectVerdict(false, {std::string("flash:/a") + forbidden});
}

TEST(Dots, AreResolvedByTheTextAlone) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"/a/./b/../c/", "/a/c"},    {"/a/..", "/"},     {"/..", ""},
      {"/mnt/f:/a/..", "/mnt/f:"}, {"a/b/..", "a"},    {"a/..", ""},
      {"/mnt/f:", "/mnt/f:"},      {"a/.", "a"},       {"./a", ""},
      {"/mnt/f:/..", ""},          {"//a", ""},        {"a//b", ""},
      {"/a/b/c/dd", "/a/b/c/dd"},  {"/a/b/c/ddd", ""}, {"", ""},
  };
  for (const auto& [name, resolved] : kCases) {
    const auto floor = std::string_view(name).starts_with("/mnt") ? kMediumFloor : kRootFloor;
    char output[10];
    EXPECT_STREQ(eliminatePoint(name, floor, sizeof(output), output) == kSuccess ? output : "", resolved) << name;
  }
}

/// @param most room for the name. @return the name, of its own length, or nothing when it is refused.
std::optional<std::string> Unquoted(const std::string& typed, std::uint32_t most) {
  char name[kMaxTypedName + 2];
  if (ESH_FS_ConvertToValidStr(typed.c_str(), static_cast<std::uint32_t>(typed.size()), &most, name) != kSuccess)
    return std::nullopt;
  EXPECT_EQ(most, std::strlen(name));
  return name;
}

TEST(QuotedName, LosesItsQuotesOnlyWhenItHoldsABlank) {
  const std::string longest(kMaxTypedName, 'x');
  const std::tuple<std::string, std::optional<std::string>, std::uint32_t> cases[] = {
      {"\"my file\"", "my file", kMaxTypedName},
      {"\"file\"", "\"file\"", kMaxTypedName},
      {"\"my file", std::nullopt, kMaxTypedName},
      {"\"a \\\"b\\\"\"", "a \"b\"", kMaxTypedName},
      {"\"a \\\\\\b\\\"", "a \\\\b\\", kMaxTypedName},
      {longest, longest, kMaxTypedName},
      {longest + "x", std::nullopt, kMaxTypedName + 1},
      {"abcd", std::nullopt, 3},
      {"\"a c\"", "a c", 3},
      {"\"a cd\"", std::nullopt, 3},
  };
  for (const auto& [typed, name, most] : cases) EXPECT_EQ(Unquoted(typed, most), name) << typed;
}

}  // namespace
