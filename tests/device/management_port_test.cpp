#include "tests/device/operator_console.h"

namespace {

/// The management port, set up with the real tools, which note how they were called.
struct ManagementPort : OperatorConsole {
  void SetUp() override {
    // A line that stands in /tmp/broken fails. The script that a tool is called from is kept.
    constexpr char kRecorder[] =
        "#!/bin/sh\n"
        "call=\"${0##*/} $*\"\n"
        "echo \"$call\" >> /tmp/tools\n"
        "[ -e /var/tmp/TempFile ] && cp -p /var/tmp/TempFile /tmp/script\n"
        "stty -a 2> /dev/null | grep -q '[^-]echo ' && echo 'keys are echoed' >> /tmp/tools\n"
        "[ \"$(cat /tmp/broken 2> /dev/null)\" = \"$call\" ] && exit 1\n"
        "exec /bin/busybox $call\n";
    Replace("/bin/ifconfig", kRecorder);
    Replace("/bin/route", kRecorder);
    // Stands in the interface view of a shell that has saved nothing.
    if (!UseDevice()) NewShell();
    Command("system-view");
    Command("interface m-eth0");
    TakeTools();
  }

  /// The tool lines since the last call. @param broken the one that fails from now on.
  std::string TakeTools(const std::string& broken = "") {
    return Run("cat /tmp/tools 2> /dev/null; rm -f /tmp/tools; echo '" + broken + "' > /tmp/broken");
  }
};

/// Step by step what is saved and what is applied again, which is the same on every kernel.
struct NativeManagementPort : ManagementPort {
  struct Step {
    const char* line;
    std::string tools;
    std::string broken = {};  // the one of them that fails
    const char* said = "";
  };

  void ExpectSteps(const std::vector<Step>& steps) {
    for (const Step& step : steps) {
      SCOPED_TRACE(step.line);
      if (!step.broken.empty()) TakeTools(step.broken);
      EXPECT_EQ(Command(step.line), step.said);
      EXPECT_EQ(TakeTools(), step.tools);
    }
  }
};

constexpr char kNoAddress[] = "ifconfig m-eth0 0.0.0.0\n";
constexpr char kDown[] = "ifconfig m-eth0 0.0.0.0\nifconfig m-eth0 down\n";
constexpr char kPortUp[] = "ifconfig m-eth0 up\n";
constexpr char kNoGateway[] = "route del default\n";
constexpr char kNoGateway6[] = "route -A inet6 del ::/0\n";

std::string Address(const std::string& address) { return "ifconfig m-eth0 " + address + " netmask 255.255.255.0\n"; }
std::string Address6(const std::string& address) { return "ifconfig m-eth0 " + address + "/64\n"; }
std::string NoAddress6(const std::string& address) { return "ifconfig m-eth0 del " + address + "/64\n"; }
std::string Gateway(const std::string& gateway) { return "route add default gw " + gateway + "\n"; }
std::string Gateway6(const std::string& gateway) { return "route -A inet6 add ::/0 gw " + gateway + " dev m-eth0\n"; }

TEST_F(NativeManagementPort, SavesAnAddressOrAGatewayThatFitsWhenItsToolWorked) {
  ExpectSteps({
      {"undo ipv6 address", ""},
      {"ip address 10.9.1.255 24", "", "", "Invalid IP address.\n"},
      {"ip address 10.9.1.1 24", Address("10.9.1.1"), Address("10.9.1.1")},
      {"ip address 10.9.1.1 24", Address("10.9.1.1")},
      {"ip address 10.9.1.1 255.255.255.0", ""},
      {"ipv6 address fd09:0::1 064", Address6("fd09::1")},
      {"ipv6 address fd09::1 64", ""},
      {"ipv6 address fd09:: 64", "", "", "Invalid IPv6 address.\n"},
      {"ipv6 address fd09::2 64", NoAddress6("fd09::1") + Address6("fd09::2")},
      {"undo ipv6 address", NoAddress6("fd09::2"), NoAddress6("fd09::2")},
      {"undo ipv6 address", NoAddress6("fd09::2")},
      {"undo ip address", kNoAddress, kNoAddress},
      {"undo ip address", kNoAddress},
      {"undo ipv6 gateway", ""},
      {"ip address 10.9.1.1 24", Address("10.9.1.1")},
      {"ip gateway 10.9.1.255", "", "", "The gateway is invalid.\n"},
      {"ip gateway 10.9.2.254", "", "", "The gateway is unreachable.\n"},
      {"ip gateway 10.9.1.254", Gateway("10.9.1.254")},
      {"ip gateway 10.9.1.254", ""},
      {"ip gateway 10.9.1.253", kNoGateway + Gateway("10.9.1.253"), Gateway("10.9.1.253")},
      {"ip gateway 10.9.1.254", Gateway("10.9.1.254")},
      {"ip gateway 10.9.1.253", kNoGateway + Gateway("10.9.1.253"), kNoGateway},  // the old one was gone already
      {"undo ip gateway", kNoGateway, kNoGateway},
      {"ip gateway 10.9.1.253", ""},
      {"ipv6 gateway 2001::1", "", "", "The gateway address must be link-local address.\n"},
      {"ipv6 gateway fe80::8", Gateway6("fe80::8"), Gateway6("fe80::8")},
      {"ipv6 gateway fe80::8", Gateway6("fe80::8")},
      {"ipv6 gateway fe80::7", kNoGateway6 + Gateway6("fe80::7"), kNoGateway6},
      {"ipv6 gateway fe80::9", kNoGateway6 + Gateway6("fe80::9")},
      // A new address takes the gateway of its own kind with it.
      {"ipv6 address fd09::2 64", Address6("fd09::2")},
      {"ip address 10.9.2.1 24", kNoGateway + Address("10.9.2.1")},
      {"undo ip gateway", ""},
      {"ip gateway 10.9.2.254", Gateway("10.9.2.254")},
      {"undo ip address", std::string(kNoGateway) + kNoAddress},
      {"undo ipv6 gateway", kNoGateway6},
  });
}

TEST_F(NativeManagementPort, ComesUpAgainWithWhatIsSaved) {
  ExpectSteps({
      {"ip address 10.9.2.1 24", Address("10.9.2.1")},
      {"ipv6 address fd09::2 64", Address6("fd09::2")},
      {"ip gateway 10.9.2.254", Gateway("10.9.2.254")},
      // Shut down only when both tools worked. From then on gateways are only saved.
      {"shutdown", kDown, kNoAddress},
      {"shutdown", kDown},
      {"shutdown", ""},
      {"ip gateway 10.9.2.253", ""},
      {"ipv6 gateway fe80::7", ""},
      {"undo shutdown", kPortUp, kPortUp, "Operation failed.\n"},
      {"undo shutdown",
       kPortUp + Address("10.9.2.1") + Address6("fd09::2") + Gateway("10.9.2.253") + Gateway6("fe80::7")},
      {"undo shutdown", kPortUp},
      // A setting that is refused when the port comes up is forgotten.
      {"shutdown", kDown},
      {"undo shutdown", kPortUp + Address("10.9.2.1") + Address6("fd09::2") + Gateway6("fe80::7"), Address("10.9.2.1")},
      {"undo ip address", ""},
      // Addresses, set or removed, bring the port up.
      {"shutdown", kDown},
      {"ip address 10.9.3.1 24", kPortUp + Address("10.9.3.1") + Address6("fd09::2") + Gateway6("fe80::7")},
      {"ip gateway 10.9.3.254", Gateway("10.9.3.254")},
      {"shutdown", kDown},
      {"undo ipv6 address", kPortUp + Address("10.9.3.1") + Gateway("10.9.3.254") + Gateway6("fe80::7")},
      {"shutdown", kDown},
      {"ip address 10.9.4.1 24", kPortUp + Address("10.9.4.1") + Gateway6("fe80::7")},
      {"shutdown", kDown},
      {"ipv6 address fd09::4 64", kPortUp + Address("10.9.4.1") + Address6("fd09::4") + Gateway6("fe80::7")},
      {"shutdown", kDown},
      {"undo ipv6 gateway", ""},
      {"undo ip address", kPortUp + Address6("fd09::4")},
  });
}

TEST_F(ManagementPort, LeavesTheKernelNothingWhenItIsUndone) {
  for (const char* line :
       {"ip address 10.0.0.9 24", "ip gateway 10.0.0.1", "ipv6 address fd00::9 64", "ipv6 gateway fe80::1",
        "undo ip gateway", "undo ipv6 gateway", "undo ipv6 address", "undo ip address"})
    EXPECT_EQ(Command(line), "");
  EXPECT_EQ(Run("ip -4 addr show dev m-eth0; ip route; ip -6 route | grep default || true"), "");
  EXPECT_EQ(Run("ip -o -6 addr show dev m-eth0 scope global"), "");
}

TEST_F(ManagementPort, IPv6RoutesAreShownAsTheToolShowsThem) {
  EXPECT_EQ(Command("display ipv6 routing-table"), Run("busybox route -A inet6 -n"));
  EXPECT_EQ(Device().ReadFile("/tmp/script"),
            std::string("#!/bin/sh\r\n\0/bin/route -A inet6 -n > /etc/pkg/route_table6", 58));
  EXPECT_EQ(Run("stat -c %a /tmp/script"), "666\n");

  constexpr char kLeftovers[] = "ls -d /var/tmp/* /etc/pkg/route_table6 2> /dev/null; true";
  Run("for i in $(seq 40); do ip -6 route add fd77:$i::/64 dev m-eth0; done");
  Press("display ipv6 routing-table\r", "---- More ----");
  EXPECT_EQ(Run(kLeftovers), "/etc/pkg/route_table6\n");
  Press("q", "[boot-m-eth0]");
  EXPECT_EQ(Run(kLeftovers), "");

  Run("echo 'route -A inet6 -n' > /tmp/broken");  // the table is empty
  EXPECT_EQ(Command("display ipv6 routing-table"), "");
  EXPECT_EQ(Run(kLeftovers), "");
}

TEST_F(NativeManagementPort, IsDisplayedWithoutItsCarrierFileAndFailsWithoutThePort) {
  const std::string display = "display interface m-eth0";
  EXPECT_TRUE(Command(display).starts_with("m-eth0 current state: UP\nLine protocol current state: UP\nThe Maximum"));
  Run("umount -l /sys/.kernel 2> /dev/null || rm -r /sys/class/net");
  EXPECT_EQ(Command(display).find("current state"), std::string::npos);
  Command("shutdown");
  EXPECT_EQ(Command("undo shutdown"), "");
  EXPECT_TRUE(Command(display).starts_with("m-eth0 current state: Administratively DOWN\n"));
  Run("/bin/rmmod ipstack");
  EXPECT_EQ(Command(display), "Operation failed.\n");
  NewDevice();
}

}  // namespace
