#include <string>
#include <tuple>

#include "net/interface_counters.h"
#include "net/ipv6_listing.h"
#include "tests/support/private_root.h"
#include "util/unique_handle.h"

namespace {

using InterfaceReading = PrivateRootTest;

TEST_F(InterfaceReading, TakesTheCountersOfItsOwnLine) {
  constexpr std::tuple<const char*, const char*, const char*, unsigned long long, unsigned long long> kCases[] = {
      {"the second line", "    lo: 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9\nm-eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n",
       "m-eth0", 1, 16},
      {"the first of two", "\t m-eth0:1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 2\nm-eth0: 3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 4\n",
       "m-eth0", 1, 2},
      {"64 bits", "m-eth0: 18446744073709551615 0 0 0 0 0 0 0 0 0 0 0 0 0 0 9223372036854775808\n", "m-eth0",
       18446744073709551615U, 9223372036854775808U},
      {"numbers are missing", "m-eth0: 7 8", "m-eth0", 7, 0},
      {"other names", "m-eth01: 1\nxm-eth0: 1\nm-eth: 1\nm-eth0 1\nm-eth0.100: 1\n", "", 0, 0},
      {"no line at all", "", "", 0, 0},
  };
  InterfaceCounters nothing;
  EXPECT_FALSE(ReadInterfaceCounters("m-eth0", nothing)) << "there is no file";
  for (const auto& [why, lines, name, received_bytes, sent_compressed] : kCases) {
    WriteFile("/proc/net/dev", std::string("m-eth0: 1\nm-eth0: 2\n") + lines);  // whatever the two heading lines say
    InterfaceCounters counters;
    ASSERT_TRUE(ReadInterfaceCounters("m-eth0", counters));
    EXPECT_STREQ(counters.name, name) << why;
    EXPECT_EQ(counters.column[kReceivedBytes], received_bytes) << why;
    EXPECT_EQ(counters.column[kSendCompressed], sent_compressed) << why;
  }
}

TEST_F(InterfaceReading, TakesIPv6AddressesInTheOrderOfTheList) {
  WriteFile(kIPv6ListingFile,
            "fe800000000000000000000000000001 02 40 20 80   m-eth0\n"
            "20010db8000000000001000000000000 1234 7f 00 c0 a-name-of-20-letters\n"
            "not an address\n"
            "fe800000000000000000000000000002 02 40 20 80   m-eth0\n");
  const UniqueFile listing(std::fopen(kIPv6ListingFile, "re"));
  std::string seen;
  IPv6Entry entry;
  while (ReadIPv6Entry(listing.get(), entry)) {
    seen += std::string(entry.address) + "/" + std::to_string(entry.prefix_length) + " " + std::to_string(entry.scope) +
            " " + entry.interface + "\n";
  }
  EXPECT_EQ(seen, "fe80::1/64 32 m-eth0\n2001:db8:0:0:1::/127 0 a-name-of-20-letters\n")
      << "a line that is no address ends the list";
}

}  // namespace
