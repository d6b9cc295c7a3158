#include "fs/name_rules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "shell/result.h"

namespace {

/// Tries a rule on names that all deserve the same verdict.
void ExpectVerdict(bool accepted, std::uint32_t (*rule)(const char*), std::initializer_list<std::string> names) {
  for (const std::string& name : names) {
    EXPECT_EQ(rule(name.c_str()) == kSuccess, accepted) << '"' << name << '"';
  }
}

TEST(FileName, HasLegalCharactersAndShape) {
  const std::string longest(255, 'c');
  ExpectVerdict(true, ESH_FS_IsValidFileName,
                {"a", "flash:", "flash:/a b/\xc3\xa9\x7f", "/mnt/flash:/a/", "/", longest,
                 "a/" + longest + "/" + longest, longest.substr(1) + ":/" + longest});
  ExpectVerdict(false, ESH_FS_IsValidFileName,
                {"", "a\x1f", "a\n", "//a", "a//b", "a/b//", ":", ":/a", "flash:a", "a:/b:/c", "a::", longest + "c",
                 "a/" + longest + "c/b", longest + ":/a"});
  for (const char forbidden : std::string("\"'*<>?\\|")) {
    ExpectVerdict(false, ESH_FS_IsValidFileName, {std::string("flash:/a") + forbidden});
  }
}

TEST(FileName, HasAtMost4095Characters) {
  std::string name;
  while (name.size() < 4095) {
    name += "a/";
  }
  ASSERT_EQ(name.size(), 4096U);
  EXPECT_NE(ESH_FS_IsValidFileName(name.c_str()), kSuccess);
  name.pop_back();
  EXPECT_EQ(ESH_FS_IsValidFileName(name.c_str()), kSuccess);
}

TEST(FileName, IsHiddenByAnyComponentThatBeginsWithADot) {
  ExpectVerdict(true, ESH_IsVisibleFullFileName, {"a/./b/.", "..", "../a", "a.b", "a/b.", "/", ""});
  ExpectVerdict(false, ESH_IsVisibleFullFileName,
                {".profile", "..x", "...", "a/.b/c", "/mnt/flash:/.h", "dir/.hidden/"});
}

TEST(QuotedName, LosesItsQuotesOnlyWhenItHoldsABlank) {
  struct QuoteCase {
    const char* typed;
    const char* name;  // NULL: refused
  };
  constexpr QuoteCase kCases[] = {
      {"file", "file"},
      {"\"my file\"", "my file"},
      {"\"file\"", "\"file\""},
      {"my file", nullptr},
      {"my\tfile", nullptr},
      {"\"my file", nullptr},
      {"my file\"", nullptr},
      {"\"", "\""},
      {"\"a \\\"b\\\"\"", "a \"b\""},
      {"\"a \\\\b\"", "a \\b"},
      {"\"a \\n\\b\"", "a \\n\\b"},
      {"\" \"", " "},
      {"a\\\\b", "a\\\\b"},
      {"", ""},
  };
  for (const QuoteCase& c : kCases) {
    char name[513];
    std::uint32_t length = 512;
    const auto typed = static_cast<std::uint32_t>(std::strlen(c.typed));
    const std::uint32_t result = ESH_FS_ConvertToValidStr(c.typed, typed, &length, name);
    EXPECT_EQ(result, c.name == nullptr ? ESH_ERR_FAIL : kSuccess) << c.typed;
    if (c.name != nullptr) {
      EXPECT_STREQ(name, c.name);
      EXPECT_EQ(length, std::strlen(c.name)) << c.typed;
    }
  }
}

TEST(QuotedName, KeepsToItsLengths) {
  struct LengthCase {
    std::string typed;
    std::uint32_t most;
    bool accepted;
  };
  const LengthCase cases[] = {
      {std::string(512, 'x'), 512, true},
      {std::string(513, 'x'), 1000, false},
      {"abc", 3, true},
      {"abcd", 3, false},
      {"\"a c\"", 3, true},
      {"\"a cd\"", 3, false},
      {"\"" + std::string(510, ' ') + "\"", 512, true},
  };
  for (const LengthCase& c : cases) {
    char name[1001];
    std::uint32_t length = c.most;
    const auto typed = static_cast<std::uint32_t>(c.typed.size());
    EXPECT_EQ(ESH_FS_ConvertToValidStr(c.typed.c_str(), typed, &length, name) == kSuccess, c.accepted) << c.typed;
  }
}

TEST(ParentDir, IsWhatStandsBeforeTheLastComponent) {
  constexpr const char* kCases[][2] = {{"a/b/c", "a/b/"}, {"a/b/", "a/b/"}, {"/a", "/"}, {"a", ""}, {"", ""}};
  for (const auto& c : kCases) {
    std::string name = c[0];
    ESH_GetParentDir(name.data());
    EXPECT_STREQ(name.c_str(), c[1]) << c[0];
  }
}

TEST(FixedCopy, ClearsTheRestOfTheBufferOrCuts) {
  char buffer[5] = {'x', 'x', 'x', 'x', 'x'};
  MyStrlcpy("ab", 5, buffer);
  EXPECT_EQ(std::string(buffer, 5), std::string("ab\0\0\0", 5));
  MyStrlcpy("abcd", 5, buffer);
  EXPECT_STREQ(buffer, "abcd");
  MyStrlcpy("123456", 5, buffer);
  EXPECT_STREQ(buffer, "1234");
}

}  // namespace
