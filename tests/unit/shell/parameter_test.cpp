#include "shell/parameter.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "shell/result.h"

namespace {

/// Tries a check on texts that all deserve the same answer.
template <typename Check>
void ExpectAnswer(int answer, Check check, std::initializer_list<const char*> texts) {
  for (const char* text : texts) {
    EXPECT_EQ(check(text), answer) << '"' << text << '"';
  }
}

TEST(ParameterCheck, IPv4AddressIsFourDecimalParts) {
  ExpectAnswer(1, ESH_CheckIPv4, {"1.2.3.4", "255.255.255.255", "0.0.0.0"});
  ExpectAnswer(0, ESH_CheckIPv4,
               {"256.1.1.1", "1.2.3", "1.2.3.4.5", "1.2.3.4 ", "010.1.1.1", "1.2.3.a", "1..3.4", "0x1.2.3.4", ""});
}

TEST(ParameterCheck, IPv6AddressHasNoPrefixLength) {
  ExpectAnswer(1, ESH_CheckIPv6,
               {"::1", "2001:DB8::1", "::ffff:1.2.3.4", "0000:0000:0000:0000:0000:ffff:255.255.255.255"});
  ExpectAnswer(0, ESH_CheckIPv6, {"2001::1/64", "1::2::3", "12345::", "1.2.3.4", ""});
}

TEST(ParameterCheck, IPv6PrefixLengthIsOneTo128) {
  const char* longest = "0000:0000:0000:0000:0000:ffff:255.255.255.255/128";
  const char* too_long = "0000:0000:0000:0000:0000:0000:ffff:255.255.255.255/64";
  const char* wraps = "::1/18446744073709551680";  // 2^64 + 64
  ExpectAnswer(1, ESH_CheckIPv6Prefix, {"2001::1/128", "::/1", "2001::1/064", longest});
  ExpectAnswer(0, ESH_CheckIPv6Prefix,
               {"2001::1/0", "2001::1/129", "2001::1/", "2001::1/64x", "2001::1/+64", "2001::1/-64", "2001::1/ 64",
                "2001::1/a", "2001::1/6/4", "2001::1", "/64", "1.2.3.4/24", too_long, wraps});
}

TEST(ParameterCheck, IntegerIsDigitsWithinItsBounds) {
  const auto one_to_31 = [](const char* text) { return ESH_CheckInteger(text, 1, 31); };
  ExpectAnswer(1, one_to_31, {"1", "31", "031", "00000000000000000031"});
  const char* wraps = "18446744073709551617";  // 2^64 + 1
  ExpectAnswer(0, one_to_31, {"0", "000", "32", "-1", "+1", "1a", " 1", wraps});
  const auto any = [](const char* text) { return ESH_CheckInteger(text, 0, ~std::uint64_t{0}); };
  ExpectAnswer(1, any, {"000", "9999999999"});
  ExpectAnswer(0, any, {"10000000000"});
}

TEST(ParameterCheck, StringIsPrintableAndOfItsLength) {
  const std::string text(513, 'x');
  const auto last = [&](std::size_t length) { return text.c_str() + text.size() - length; };
  ExpectAnswer(1, [](const char* word) { return ESH_CheckString(word, 3, 15); },
               {last(3), last(15), "a\x20z", "a\x7ez"});
  ExpectAnswer(0, [](const char* word) { return ESH_CheckString(word, 3, 15); },
               {last(2), last(16), "", "a\x1fz", "a\x7fz", "a\xc3\xa9"});
  EXPECT_EQ(ESH_CheckString(last(512), 1, 1000), 1);
  EXPECT_EQ(ESH_CheckString(last(513), 1, 1000), 0) << "no word is longer than 512 characters";
  EXPECT_EQ(ESH_CheckString("", 0, 5), 1);
}

TEST(ParameterCheck, PlaceholdersAreToldFromKeywords) {
  ExpectAnswer(1, ESH_Variable, {"X.X.X.X", "X:X::X:X", "X:X::X:X/M", "INTEGER<1-31>", "STRING<1-15>", "STRING"});
  ExpectAnswer(0, ESH_Variable, {"string", "X.X.X", "X.X.X.X.", "Reboot", "<cr>", ""});
}

TEST(ParameterRecord, TextIsCutToItsBufferAndReplacesTheLastOne) {
  struct RecordCase {
    std::uint32_t (*record)(const char*);
    const char* buffer;
    std::size_t kept;
  };
  constexpr RecordCase kCases[] = {
      {ESH_RecordUserName, g_szUserName, 15},
      {ESH_RecordPassword, g_szPassword, 15},
      {ESH_RecordLocalFile, g_szLocalFile, 511},
      {ESH_RecordRemoteFile, g_szRemoteFile, 511},
      {ESH_RecordSourceFile, g_szSourceFile, 511},
      {ESH_RecordDestFile, g_szDestFile, 511},
      {ESH_RecordCount, g_szCount, 10},
      {ESH_RecordSize, g_szSize, 10},
      {ESH_RecordDiskName, g_szDiskName, 15},
      {ESH_RecordPkgFile, g_szPkgFlie, 127},
  };
  for (const RecordCase& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    EXPECT_EQ(c.record(std::string(512, '7').c_str()), kSuccess);
    EXPECT_EQ(c.buffer, std::string(c.kept, '7'));
    EXPECT_EQ(c.record("ab"), kSuccess);
    EXPECT_STREQ(c.buffer, "ab");
  }
}

TEST(ParameterRecord, AddressesAndLengthsAreKeptInOneSpelling) {
  EXPECT_EQ(ESH_RecordIPv4("192.168.100.200"), kSuccess);
  EXPECT_STREQ(g_szIPv4Address, "192.168.100.200");
  EXPECT_EQ(ESH_RecordIPv4Mask("255.255.255.255"), kSuccess);
  EXPECT_STREQ(g_szIPv4Mask, "255.255.255.255");
  EXPECT_EQ(ESH_RecordIPv6("0:0::0:1"), kSuccess);
  EXPECT_STREQ(g_szIPv6Address, "::1");
  EXPECT_EQ(ESH_RecordIPv6("2001:0DB8:1111:2222:3333:4444:5555:6666"), kSuccess);
  EXPECT_STREQ(g_szIPv6Address, "2001:db8:1111:2222:3333:4444:5555:6666");
  EXPECT_EQ(ESH_RecordIPv4MaskLen("031"), kSuccess);
  EXPECT_STREQ(g_szIPv4MaskLen, "31");
  EXPECT_EQ(ESH_RecordIPv6PreLen("128"), kSuccess);
  EXPECT_STREQ(g_szIPv6PreLen, "128");
}

TEST(ParameterRecord, AnAddressThatDoesNotConvertLeavesNoneBehind) {
  (void)ESH_RecordIPv4("1.1.1.1");
  (void)ESH_RecordIPv4Mask("255.0.0.0");
  (void)ESH_RecordIPv6("::1");
  EXPECT_EQ(ESH_RecordIPv4("1.1.1"), ESH_ERR_FAIL);
  EXPECT_EQ(ESH_RecordIPv4Mask("24"), ESH_ERR_FAIL);
  EXPECT_EQ(ESH_RecordIPv6("::1/64"), ESH_ERR_FAIL);
  EXPECT_STREQ(g_szIPv4Address, "");
  EXPECT_STREQ(g_szIPv4Mask, "");
  EXPECT_STREQ(g_szIPv6Address, "");
}

}  // namespace
