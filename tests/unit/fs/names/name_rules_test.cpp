#include "fs/names/name_rules.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "util/result.h"

namespace {

/// Tries a rule on names that all deserve the same verdict.
void ExpectVerdict(bool accepted, std::uint32_t (*rule)(const char*), std::initializer_list<std::string> names) {
  for (const std::string& name : names) EXPECT_EQ(rule(name.c_str()) == kSuccess, accepted) << '"' << name << '"';
}

TEST(FileName, HasLegalCharactersShapeAndLength) {
  const std::string longest(kMaxComponent, 'c');
  std::string name = "a";
  while (name.size() < kMaxName) name += "/a";
  ExpectVerdict(true, ESH_FS_IsValidFileName,
                {"a", "flash:", "flash:/a b/\xc3\xa9\x7f", "/mnt/flash:/a/", "/", longest, name,
                 "a/" + longest + "/" + longest, longest.substr(1) + ":/" + longest});
  ExpectVerdict(false, ESH_FS_IsValidFileName,
                {"", "a\x1f", "//a", "a//b", "a/b//", ":", ":/a", "flash:a", "a:/b:/c", "a::", longest + "c",
                 "a/" + longest + "c/b", longest + ":/a", name + "a"});
  for (const char forbidden : std::string("\"'*<>?\\|"))
    ExpectVerdict(false, ESH_FS_IsValidFileName, {std::string("flash:/a") + forbidden});
}

TEST(FileName, IsHiddenByAnyComponentThatBeginsWithADot) {
  ExpectVerdict(true, ESH_IsVisibleFullFileName, {"a/./b/.", "..", "../a", "a.b", "a/b.", "/", ""});
  ExpectVerdict(false, ESH_IsVisibleFullFileName,
                {".profile", "..x", "...", "a/.b/c", "/mnt/flash:/.h", "dir/.hidden/"});
}

TEST(QuotedName, LosesItsQuotesOnlyWhenItHoldsABlank) {
  const std::string longest(kMaxTypedName, 'x');
  const struct {
    std::string typed;
    const char* name;  // NULL: refused
    std::uint32_t most = kMaxTypedName;
  } cases[] = {
      {"file", "file"},
      {"\"my file\"", "my file"},
      {"\"file\"", "\"file\""},
      {"my file", nullptr},
      {"\"my file", nullptr},
      {"\"a \\\"b\\\"\"", "a \"b\""},
      {"\"a \\\\b\"", "a \\b"},
      {"\" \"", " "},
      {"a\\\\b", "a\\\\b"},
      {longest, longest.c_str()},
      {longest + "x", nullptr, kMaxTypedName + 1},
      {"abcd", nullptr, 3},
      {"\"a c\"", "a c", 3},
      {"\"a cd\"", nullptr, 3},
  };
  for (const auto& c : cases) {
    char name[kMaxTypedName + 2];
    std::uint32_t length = c.most;
    const auto typed = static_cast<std::uint32_t>(c.typed.size());
    const bool accepted = ESH_FS_ConvertToValidStr(c.typed.c_str(), typed, &length, name) == kSuccess;
    ASSERT_EQ(accepted, c.name != nullptr) << c.typed;
    if (accepted) {
      EXPECT_STREQ(name, c.name);
      EXPECT_EQ(length, std::string(c.name).size()) << c.typed;
    }
  }
}

}  // namespace
