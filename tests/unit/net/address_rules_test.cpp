#include "net/address_rules.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <tuple>

#include "shell/command/parameter.h"
#include "util/fixed_text.h"

namespace {

TEST(AddressOfThePort, IsAHostOfItsOwnSubnet) {
  constexpr std::tuple<const char*, const char*, bool, const char*> kCases[] = {
      {"1.0.0.1", "255.0.0.0", true, "the first class A network"},
      {"223.255.255.1", "255.255.255.252", true, "the last class C network"},
      {"10.1.1.0", "255.255.255.0", false, "network address"},
      {"10.1.1.1", "255.255.255.254", false, "a subnet of two has no room between network and broadcast"},
      {"10.1.1.1", "0.0.0.0", false, "mask without a network"},
      {"10.1.1.1", "255.0.255.0", false, "mask with a hole"},
      {"10.1.1.1", "", false, "no mask"},
      {"", "255.255.255.0", false, "no address"},
      {"127.0.0.1", "255.0.0.0", false, "loopback"},
      {"0.1.2.3", "255.0.0.0", false, "this network"},
      {"64.0.0.1", "128.0.0.0", false, "the network part is zero"},
      {"192.0.0.1", "192.0.0.0", false, "the network part is the mask itself"},
  };
  for (const auto& [address, mask, is_usable, why] : kCases) {
    CopyText(g_szIPv4Address, address);
    EXPECT_EQ(IsValidIPAddr(mask) == 1, is_usable) << address << " " << mask << ": " << why;
  }
}

TEST(Gateway, LiesInTheSubnetOrOnTheLink) {
  EXPECT_TRUE(IsSameSubnet("10.1.1.1", "255.255.254.0", "10.1.0.9"));
  EXPECT_FALSE(IsSameSubnet("10.1.1.1", "255.255.254.0", "10.1.2.9"));
  for (const char* on_link : {"fe80::1", "febf:ffff::1"}) EXPECT_TRUE(IsLinkLocalText(on_link)) << on_link;
  for (const char* beyond : {"fec0::1", "fe7f::1", "", "fe80::1/64"}) EXPECT_FALSE(IsLinkLocalText(beyond)) << beyond;
}

TEST(IPv6AddressOfThePort, IsAGlobalHost) {
  constexpr std::tuple<const char*, unsigned, bool> kCases[] = {
      {"2001::1", 64, true},       {"fd00::5", 127, true},     {"2001::1", 1, true},   {"fec0::1", 10, true},
      {"::2", 64, true},           {"2001::1", 128, false},    {"2001::", 16, false},  {"2001::", 15, true},
      {"2001:0:0:1::", 64, false}, {"2001:0:0:1::", 63, true}, {"ff02::1", 16, false}, {"::", 64, false},
      {"::1", 64, false},          {"fe80::1", 64, false},     {"febf::1", 64, false}, {"2001::2", 127, false},
  };
  for (const auto& [text, prefix_length, is_usable] : kCases) {
    in6_addr address{};
    ASSERT_EQ(inet_pton(AF_INET6, text, &address), 1);
    EXPECT_EQ(IsUsableIPv6Address(address, prefix_length), is_usable) << text << "/" << prefix_length;
  }
}

}  // namespace
