#include "shell/command/parameter.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <iterator>
#include <string>

#include "util/result.h"

namespace {

using Texts = std::initializer_list<std::string>;

std::uint16_t OneTo31(const char* text) { return ESH_CheckInteger(text, 1, 31); }
std::uint16_t AnyNumber(const char* text) { return ESH_CheckInteger(text, 0, ~std::uint64_t{0}); }
std::uint16_t ThreeTo15Letters(const char* text) { return ESH_CheckString(text, 3, 15); }
std::uint16_t AnyText(const char* text) { return ESH_CheckString(text, 0, 1000); }

TEST(ParameterCheck, TakesWhatHasAMeaningOnly) {
  const std::string zeros = "0000:0000:0000:0000:0000:";
  const struct {
    const char* why;
    std::uint16_t (*check)(const char* text);
    Texts accepted;
    Texts refused;
  } kChecks[] = {
      {"four decimal parts",
       ESH_CheckIPv4,
       {"1.2.3.4", "255.255.255.255"},
       {"256.1.1.1", "1.2.3", "1.2.3.4 ", "010.1.1.1", ""}},
      {"no prefix length",
       ESH_CheckIPv6,
       {"::1", "2001:DB8::1", "::ffff:1.2.3.4", zeros + "ffff:255.255.255.255"},
       {"2001::1/64", "1::2::3", "12345::", "1.2.3.4", ""}},
      {"a prefix length of 1 to 128",
       ESH_CheckIPv6Prefix,
       {"2001::1/128", "::/1", "2001::1/064", zeros + "ffff:255.255.255.255/128"},
       {"2001::1/0", "2001::1/129", "2001::1/", "2001::1/64x", "2001::1/+64", "2001::1/6/4", "2001::1", "/64",
        "1.2.3.4/24", "::1/18446744073709551680", zeros + "0000:ffff:255.255.255.255/64"}},
      {"digits within bounds",
       OneTo31,
       {"1", "31", "00000000000000000031"},
       {"0", "000", "32", "-1", "+1", "1a", " 1", "", "18446744073709551617"}},
      {"ten digits at most", AnyNumber, {"", "000", "9999999999"}, {"10000000000"}},
      {"printable text of its length",
       ThreeTo15Letters,
       {"a z", "a\x7ez", std::string(15, 'x')},
       {"ab", std::string(16, 'x'), "a\x1fz", "a\x7fz", "a\xc3\xa9"}},
      {"512 characters at most", AnyText, {"", std::string(512, 'x')}, {std::string(513, 'x')}},
      {"placeholders are no keywords",
       ESH_Variable,
       {"X.X.X.X", "X:X::X:X", "X:X::X:X/M", "INTEGER<1-31>", "STRING"},
       {"string", "X.X.X", "X.X.X.X.", "Reboot", "<cr>", ""}},
  };
  for (const auto& c : kChecks) {
    for (const std::string& text : c.accepted) EXPECT_EQ(c.check(text.c_str()), 1) << c.why << ": " << text;
    for (const std::string& text : c.refused) EXPECT_EQ(c.check(text.c_str()), 0) << c.why << ": " << text;
  }
}

TEST(ParameterRecord, ReplacesTheLastOneAndFitsItsBuffer) {
  const std::string digits(512, '7');
  for (const std::uint32_t stored :
       {ESH_RecordSize(digits.c_str()), ESH_RecordPassword(digits.c_str()), ESH_RecordIPv4MaskLen("01234"),
        ESH_RecordIPv6PreLen("12345"), ESH_RecordIPv4("10.0.0.1")})
    EXPECT_EQ(stored, kSuccess);
  EXPECT_EQ(ESH_RecordIPv4("10.0.0"), ESH_ERR_FAIL);
  EXPECT_EQ(std::string(g_szSize) + g_szPassword + g_szIPv4MaskLen + "," + g_szIPv6PreLen + "," + g_szIPv4Address,
            std::string(25, '7') + "123,1234,");
  EXPECT_EQ(ESH_RecordPassword("short"), kSuccess);
  EXPECT_EQ(std::string(std::begin(g_szPassword), std::end(g_szPassword)), "short" + std::string(11, '\0'));
}

}  // namespace
