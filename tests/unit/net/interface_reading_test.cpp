#include <sched.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "net/ipv6_listing.h"
#include "net/management_port.h"
#include "net/network_commands.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"
#include "util/result.h"

namespace {

using InterfaceReading = PrivateRootTest;

TEST_F(InterfaceReading, IsDisplayedLineByLine) {
  ASSERT_EQ(unshare(CLONE_NEWNET), 0);
  ASSERT_EQ(std::system("busybox ip link add m-eth0 address 02:5a:c1:07:f2:0e type veth &&"  // NOLINT(cert-env33-c)
                        "busybox ip addr add 10.0.0.9/23 dev m-eth0"),
            0);
  const std::string heading = "m-eth0: 1\nm-eth0: 2\n";  // whatever its two lines say
  WriteFile("/proc/net/dev", heading +
                                 "    lo: 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9\n"
                                 "\t m-eth0:1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n"
                                 "m-eth0: 3 4\n");
  WriteFile(kIPv6ListingFile,
            "fe800000000000000000000000000001 02 40 20 80   m-eth0\n"
            "00000000000000000000000000000001 01 80 10 80       lo\n"
            "20010db8000000000001000000000000 1234 7f 00 c0 m-eth0\n"
            "00000000000000000000000000000001 01 80 10 80   m-eth0\n"
            "fec00000000000000000000000000009 02 0a 4f 80   m-eth0\n"
            "0000000000000000000000000a020304 02 60 80 80   m-eth0\n"
            "not an address\n"
            "fe800000000000000000000000000002 02 40 20 80   m-eth0\n");
  const std::string lines =
      "Inet4 Address is 10.0.0.9/23\r\n"
      "Inet6 Address is fe80::1/64 Scope:Link\r\n"
      "Inet6 Address is 2001:db8:0:0:1::/127 Scope:Global\r\n"
      "Inet6 Address is ::1/128 Scope:Host\r\n"
      "Inet6 Address is fec0::9/10 Scope:Site\r\n"
      "Inet6 Address is ::10.2.3.4/96 Scope:Compat\r\n"
      "IP Packet Frame Type:PKTFMT_ETHNT_2, Hardware Address:025A-C107-F20E\r\n"
      "IPV6 Packet Frame Type:PKTFMT_ETHNT_2, Hardware Address:025A-C107-F20E\r\n"
      "Input:2 packets, 3 errors, 4 dropped, 5 overruns, 6 frame\r\n"
      "Output:10 packets, 11 errors, 12 dropped, 13 overruns, 15 carrier\r\n"
      "       14 collisions, 1000 txqueuelen\r\n"
      "Input bytes:1\r\n"
      "Output bytes:9\r\n";
  ScriptedStdio stdio;
  EXPECT_EQ(ESH_ProcDisInterface(), kSuccess);
  EXPECT_EQ(stdio.TakeOutput(), lines) << "nobody knows of a carrier";
  g_enMethStatus = ESH_METH_SHUT;
  EXPECT_EQ(ESH_ProcDisInterface(), kSuccess);
  EXPECT_EQ(stdio.TakeOutput(),
            "m-eth0 current state: Administratively DOWN\r\nLine protocol current state: Administratively DOWN\r\n"
            "The Maximum Transmit Unit is 1500 \r\n" +
                lines);
  constexpr std::pair<const char*, const char*> kCounters[] = {
      {"m-eth0: 18446744073709551615 0 0 0 0 0 0 0 9223372036854775808 0 0 0 0 0 0 0\n",
       "\nInput bytes:18446744073709551615\r\nOutput bytes:9223372036854775808\r\n"},
      {"m-eth0: 7 8", "\nInput bytes:7\r\nOutput bytes:0\r\n"},
      {"m-eth01: 1\nxm-eth0: 1\nm-eth: 1\nm-eth0 1\nm-eth0.100: 1\n", "Operation failed.\r\n"},
  };
  for (const auto& [counters, end] : kCounters) {
    WriteFile("/proc/net/dev", heading + counters);
    (void)ESH_ProcDisInterface();
    EXPECT_TRUE(stdio.TakeOutput().ends_with(end)) << counters;
  }
}

}  // namespace
