#include <string>

#include "net/interface_counters.h"
#include "net/ipv6_listing.h"
#include "tests/support/private_root.h"
#include "util/unique_handle.h"

namespace {

constexpr char kHeading[] =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls carrier "
    "compressed\n";

struct CountersCase {
  const char* why;
  const char* lines;
  bool found;
  unsigned long long received_bytes;
  unsigned long long sent_compressed;
};

using InterfaceReading = PrivateRootTest;

TEST_F(InterfaceReading, TakesTheCountersOfItsOwnLine) {
  constexpr CountersCase kCases[] = {
      {"the second line", "    lo: 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9\nm-eth0: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n",
       true, 1, 16},
      {"the first of two", "\t m-eth0:1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 2\nm-eth0: 3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 4\n", true,
       1, 2},
      {"numbers of 64 bits", "m-eth0: 18446744073709551615 0 0 0 0 0 0 0 0 0 0 0 0 0 0 9223372036854775808\n", true,
       18446744073709551615U, 9223372036854775808U},
      {"numbers are missing", "m-eth0: 7 8", true, 7, 0},
      {"longer and shorter names", "m-eth01: 1\nxm-eth0: 1\nm-eth: 1\nm-eth0 1\nm-eth0.100-long-name: 1\n", false, 0,
       0},
      {"no line at all", "", false, 0, 0},
  };
  InterfaceCounters nothing;
  EXPECT_FALSE(ReadInterfaceCounters("m-eth0", nothing)) << "there is no file";
  for (const CountersCase& c : kCases) {
    SCOPED_TRACE(c.why);
    WriteFile("/proc/net/dev", std::string(kHeading) + c.lines);
    InterfaceCounters counters;
    ASSERT_TRUE(ReadInterfaceCounters("m-eth0", counters));
    EXPECT_STREQ(counters.name, c.found ? "m-eth0" : "");
    EXPECT_EQ(counters.column[kReceivedBytes], c.received_bytes);
    EXPECT_EQ(counters.column[kSendCompressed], c.sent_compressed);
  }
  WriteFile("/proc/net/dev", "m-eth0: 1\nm-eth0: 2\n");
  EXPECT_TRUE(ReadInterfaceCounters("m-eth0", nothing));
  EXPECT_STREQ(nothing.name, "") << "the heading is two lines";
}

TEST_F(InterfaceReading, TakesIPv6AddressesInTheOrderOfTheList) {
  WriteFile(kIPv6ListingFile,
            "fe800000000000000000000000000001 02 40 20 80   m-eth0\n"
            "00000000000000000000000000000001 01 80 10 80       lo\n"
            "20010db8000000000001000000000000 1234 7f 00 c0 a-name-of-20-letters\n"
            "not an address\n"
            "fe800000000000000000000000000002 02 40 20 80   m-eth0\n");
  const UniqueFile listing(std::fopen(kIPv6ListingFile, "re"));
  ASSERT_NE(listing, nullptr);
  std::string seen;
  IPv6Entry entry;
  while (ReadIPv6Entry(listing.get(), entry)) {
    seen += std::string(entry.address) + "/" + std::to_string(entry.prefix_length) + " " + std::to_string(entry.scope) +
            " " + entry.interface + "\n";
  }
  EXPECT_EQ(seen, "fe80::1/64 32 m-eth0\n::1/128 16 lo\n2001:db8:0:0:1::/127 0 a-name-of-20-letters\n")
      << "a line that is no address ends the list";
}

}  // namespace
