#include "shell/parameter.h"

#include <gtest/gtest.h>

#include <string>

#include "shell/result.h"

namespace {

constexpr std::uint64_t kNoBound = ~std::uint64_t{0};

struct TextCase {
  const char* text;
  int valid;
};

TEST(ParameterCheck, IPv4AddressIsFourDecimalParts) {
  constexpr TextCase kCases[] = {
      {"1.2.3.4", 1},  {"255.255.255.255", 1}, {"0.0.0.0", 1}, {"256.1.1.1", 0}, {"1.2.3", 0},     {"1.2.3.4.5", 0},
      {"1.2.3.4 ", 0}, {"010.1.1.1", 0},       {"1.2.3.a", 0}, {"1..3.4", 0},    {"0x1.2.3.4", 0}, {"", 0},
  };
  for (const TextCase& c : kCases) {
    EXPECT_EQ(ESH_CheckIPv4(c.text), c.valid) << c.text;
  }
}

TEST(ParameterCheck, IPv6AddressHasNoPrefixLength) {
  constexpr TextCase kCases[] = {
      {"::1", 1},
      {"2001:DB8::1", 1},
      {"::ffff:1.2.3.4", 1},
      {"0000:0000:0000:0000:0000:ffff:255.255.255.255", 1},
      {"2001::1/64", 0},
      {"1::2::3", 0},
      {"12345::", 0},
      {"0000:0000:0000:0000:0000:0ffff:255.255.255.255", 0},
      {"1.2.3.4", 0},
      {"", 0},
  };
  for (const TextCase& c : kCases) {
    EXPECT_EQ(ESH_CheckIPv6(c.text), c.valid) << c.text;
  }
}

TEST(ParameterCheck, IPv6PrefixLengthIsOneTo128) {
  constexpr TextCase kCases[] = {
      {"2001::1/128", 1},
      {"::/1", 1},
      {"2001::1/064", 1},
      {"2001::1/0", 0},
      {"2001::1/129", 0},
      {"2001::1/", 0},
      {"2001::1/64x", 0},
      {"2001::1/+64", 0},
      {"2001::1/-64", 0},
      {"2001::1/ 64", 0},
      {"2001::1/a", 0},
      {"2001::1/6/4", 0},
      {"2001::1", 0},
      {"/64", 0},
      {"1.2.3.4/24", 0},
      {"::1/18446744073709551680", 0},  // 2^64 + 64
      {"0000:0000:0000:0000:0000:ffff:255.255.255.255/128", 1},
      {"0000:0000:0000:0000:0000:0000:ffff:255.255.255.255/64", 0},
  };
  for (const TextCase& c : kCases) {
    EXPECT_EQ(ESH_CheckIPv6Prefix(c.text), c.valid) << c.text;
  }
}

TEST(ParameterCheck, IntegerIsDigitsWithinItsBounds) {
  struct IntegerCase {
    const char* text;
    std::uint64_t min;
    std::uint64_t max;
    int valid;
  };
  constexpr IntegerCase kCases[] = {
      {"1", 1, 31, 1},
      {"31", 1, 31, 1},
      {"031", 1, 31, 1},
      {"00000000000000000031", 1, 31, 1},
      {"0", 1, 31, 0},
      {"32", 1, 31, 0},
      {"-1", 1, 31, 0},
      {"+1", 1, 31, 0},
      {"1a", 1, 31, 0},
      {" 1", 1, 31, 0},
      {"000", 0, 5, 1},
      {"9999999999", 0, kNoBound, 1},
      {"10000000000", 0, kNoBound, 0},
      {"18446744073709551617", 1, 31, 0},  // 2^64 + 1
  };
  for (const IntegerCase& c : kCases) {
    EXPECT_EQ(ESH_CheckInteger(c.text, c.min, c.max), c.valid) << c.text;
  }
}

TEST(ParameterCheck, StringIsPrintableAndOfItsLength) {
  const std::string text(513, 'x');
  const auto last = [&](std::size_t length) { return text.c_str() + text.size() - length; };
  EXPECT_EQ(ESH_CheckString(last(15), 1, 15), 1);
  EXPECT_EQ(ESH_CheckString(last(16), 1, 15), 0);
  EXPECT_EQ(ESH_CheckString(last(2), 3, 15), 0);
  EXPECT_EQ(ESH_CheckString(last(3), 3, 15), 1);
  EXPECT_EQ(ESH_CheckString(last(512), 1, 1000), 1);
  EXPECT_EQ(ESH_CheckString(last(513), 1, 1000), 0) << "no word is longer than 512 characters";
  EXPECT_EQ(ESH_CheckString("", 0, 5), 1);
  EXPECT_EQ(ESH_CheckString("", 1, 5), 0);
  constexpr TextCase kCharacters[] = {{"a\x20z", 1}, {"a\x7ez", 1}, {"a\x1fz", 0}, {"a\x7fz", 0}, {"\xc3\xa9", 0}};
  for (const TextCase& c : kCharacters) {
    EXPECT_EQ(ESH_CheckString(c.text, 1, 5), c.valid) << c.text;
  }
}

TEST(ParameterCheck, PlaceholdersAreToldFromKeywords) {
  constexpr TextCase kCases[] = {
      {"X.X.X.X", 1}, {"X:X::X:X", 1}, {"X:X::X:X/M", 1}, {"INTEGER<1-31>", 1}, {"STRING<1-15>", 1}, {"STRING", 1},
      {"string", 0},  {"X.X.X", 0},    {"X.X.X.X.", 0},   {"Reboot", 0},        {"<cr>", 0},         {"", 0},
  };
  for (const TextCase& c : kCases) {
    EXPECT_EQ(ESH_Variable(c.text), c.valid) << c.text;
  }
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
