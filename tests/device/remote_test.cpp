#include "tests/device/operator_console.h"

namespace {

/// Stands for a tool and says what it was started with, whether Ctrl+C or a stop can hold it up and whether the
/// terminal echoes.
constexpr char kRecorder[] = R"(#!/bin/sh
printf '%s' "$0"
printf ' <%s>' "$@"
ignored=0x$(grep SigIgn /proc/$$/status | cut -f 2)
[ $((ignored & 2)) = 0 ] || printf ' uninterrupted'
[ $((ignored & 0x205001)) = 0 ] || printf ' deaf'  # to hang-ups, broken pipes, an end, output from the background
[ $((ignored & 0x80000)) = 0 ] || printf ' unstopped'
stty -a 2> /dev/null | grep -q '[^-]echo ' && printf ' echoing'
echo
)";

constexpr char kInvalid[] = "Invalid IP address.\n";
constexpr char kUnrecognized[] = "Unrecognized IPv6 host or wrong IPv6 address.\n";
constexpr char kWrongName[] = "Wrong file name (directory name). Please check it.\n";

/// The commands that reach other hosts, with recorders in place of their tools.
struct RemoteTools : OperatorConsole {
  void SetUp() override {
    for (const char* tool : {"telnet", "ssh", "ping", "ftpget", "ftpput", "tftp"})
      Replace(std::string("/bin/") + tool, kRecorder);
    UseDevice();
    Run("cd /mnt/flash: && mkdir dir && echo text > a");
  }
};

TEST_F(RemoteTools, ConnectionsAskForTheAddressFirstAndIgnoreCtrlC) {
  ExpectAll({
      {"telnet 127.0.0.1", "", "/bin/telnet <127.0.0.1> uninterrupted unstopped echoing\n"},
      {"telnet ipv6 0:0::0:1", "", "/bin/telnet <::1> uninterrupted unstopped echoing\n"},
      {"telnet 0.0.0.0", "", kInvalid},
      {"ssh2 127.0.0.1", "root\r", "login as:root\n/bin/ssh <127.0.0.1> <-l> <root> uninterrupted unstopped echoing\n"},
      {"ssh2 239.1.1.1", "", kInvalid},
      {"ssh2 127.0.0.1", " \r", "login as: \n"},
      {"ssh2 127.0.0.1", "root -v\r", "login as:root -v\n"},
      {"ssh2 127.0.0.1", "r\303\266t\r", "login as:r\303\266t\n"},
  });
}

TEST_F(RemoteTools, PingsPassTheirOptionsInTheOrderTyped) {
  ExpectAll({
      {"ping -c 007 127.0.0.1", "", "/bin/ping <-4> <-c> <007> <127.0.0.1>\n"},
      {"ping -s 100 127.0.0.1", "", "/bin/ping <-4> <-c> <5> <-s> <100> <127.0.0.1>\n"},
      {"ping ipv6 -s 100 ::1", "", "/bin/ping <-6> <-c> <5> <-s> <100> <::1>\n"},
      {"ping -s 100 -c 3 127.0.0.1", "", "/bin/ping <-4> <-s> <100> <-c> <3> <127.0.0.1>\n"},
      {"ping ipv6 -c 3 -s 100 ::1", "", "/bin/ping <-6> <-c> <3> <-s> <100> <::1>\n"},
      {"ping ipv6 -s 100 -c 3 ::1", "", "/bin/ping <-6> <-s> <100> <-c> <3> <::1>\n"},
      {"ping 255.255.255.255", "", kInvalid},
      {"ping ipv6 -s 20 ::", "", "Invalid IPv6 address.\n"},
  });
  Command("system-view");
  EXPECT_NE(Command("telnet 127.0.0.1").find("Unrecognized"), std::string::npos);
  EXPECT_EQ(Command("ping ipv6 ::1"), "/bin/ping <-6> <-c> <5> <::1>\n");
}

TEST_F(RemoteTools, TftpChecksAsksAndTransfers) {
  const std::string overwrite = "flash:/a already exists. Overwrite it?[Y/N]:";
  const std::string get = "/bin/tftp <-g> <-r> ";
  ExpectAll({
      {"tftp 127.0.0.1 get x/b flash:/", "", get + "<x/b> <-l> </mnt/flash://b> <127.0.0.1>\n"},
      {"tftp 127.0.0.1 get a/b/ flash:/dir/", "", get + "<a/b/> <-l> </mnt/flash:/dir//b> <127.0.0.1>\n"},
      {"tftp ipv6 ::1 get b flash:", "", get + "<b> <-l> </mnt/flash:/b> <::1>\n"},
      {"tftp 127.0.0.1 get b flash:/a", "y\r", overwrite + "y\n" + get + "<b> <-l> </mnt/flash:/a> <127.0.0.1>\n"},
      {"tftp ipv6 ::1 get b flash:/no/a", "", "tftp: can't open 'flash:/no/a': No such file or directory\n"},
      {"tftp 224.0.0.1 get b flash:/no/a", "", kInvalid},
      {"tftp 127.0.0.1 put a x/b", "", "/bin/tftp <-p> <-l> </mnt/flash:/a> <-r> <x/b> <127.0.0.1>\n"},
      {"tftp 127.0.0.1 put dir/ b", "", kWrongName},
      {"tftp ipv6 :: put no b", "", kUnrecognized},
  });
}

TEST_F(RemoteTools, FtpAsksWhoBeforeItLooksAtTheFiles) {
  const std::string login = "user:me\npassword:**\n";
  const std::string overwrite = login + "flash:/a already exists. Overwrite it?[Y/N]:";
  const std::string get = "/bin/ftpget <-u> <me> <-p> <pw> ";
  const std::string put = "/bin/ftpput <-u> <me> <-p> <pw> ";
  ExpectAll({
      {"ftp 127.0.0.1 get x/b flash:/", "me\rpw\r", login + get + "<127.0.0.1> </mnt/flash://b> <x/b>\n"},
      {"ftp ipv6 ::1 get b flash:/dir", "me\rpw\r", login + get + "<::1> </mnt/flash:/dir/b> <b>\n"},
      {"ftp ipv6 ::1 get b flash:/a", "me\rpw\r\003", overwrite + "\n"},
      {"ftp 127.0.0.1 put a x/b", "me\rpw\r", login + put + "<127.0.0.1> <x/b> </mnt/flash:/a>\n"},
      {"ftp ipv6 ::1 put a b", "me\rpw\r", login + put + "<::1> <b> </mnt/flash:/a>\n"},
      {"ftp 127.0.0.1 put dir/ b", "me\rpw\r", login + kWrongName},
      {"ftp 0.0.0.0 get b no", "", kInvalid},
      {"ftp ipv6 :: get b flash:/no/", "me\rpw\r", login + kUnrecognized},
      {"ftp ipv6 ::1 get b flash:/no/a", "me\rpw\r",
       login + "ftp: can't open 'flash:/no/a': No such file or directory\n"},
      {"ftp 127.0.0.1 get b flash:", "\rpw\r", "user:\npassword:**\n"},
      {"ftp 127.0.0.1 put a b", "me\rp w\r",
       "user:me\npassword:***\n/bin/ftpput <-u> <me> <-p> <p> <w> <127.0.0.1> <b> </mnt/flash:/a>\n"},
      {"ftp 127.0.0.1 get - flash:", "me\rpw\r", login + get + "<127.0.0.1> </mnt/flash:/-> <->\n"},
      // Which would read /new from a server of the operator's own into the device's shell.
      {"ftp 127.0.0.1 get - flash:/new", "usr ::1 /bin/shx\rpw\r",
       "user:usr ::1 /bin/sh\a\a\npassword:**\n" + std::string(kWrongName)},
  });
}

}  // namespace
