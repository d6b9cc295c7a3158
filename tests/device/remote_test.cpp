#include "tests/device/operator_console.h"

namespace {

/// Stands for a tool and says what it was started with, whether Ctrl+C or a stop can hold it up and whether the
/// terminal echoes.
constexpr char kRecorder[] = R"(#!/bin/sh
printf '%s' "$0"
printf ' <%s>' "$@"
ignored=0x$(grep SigIgn /proc/$$/status | cut -f 2)
[ $((ignored & 2)) = 0 ] || printf ' uninterrupted'
[ $((ignored & 0x80000)) = 0 ] || printf ' unstopped'
stty -a 2> /dev/null | grep -q '[^-]echo ' && printf ' echoing'
echo
)";

struct Exchange {
  const char* line;
  const char* keys;  // typed behind the line: the answers
  std::string printed;
};

constexpr char kInvalid[] = "Invalid IP address.\n";
constexpr char kUnrecognized[] = "Unrecognized IPv6 host or wrong IPv6 address.\n";
constexpr char kWrongName[] = "Wrong file name (directory name). Please check it.\n";
constexpr char kLogin[] = "user:me\npassword:**\n";

/// The commands that reach other hosts. Those that are run for real reach the device itself.
class RemoteTools : public OperatorConsole {
 protected:
  void BootWithRecorders() {
    for (const char* tool : {"telnet", "ssh", "ping", "ftpget", "ftpput", "tftp"}) {
      Replace(std::string("/bin/") + tool, kRecorder);
    }
    BootToPrompt();
    Run("cd /mnt/flash: && mkdir dir && echo text > a");
  }

  /// Types a line and all answers. @return all that was printed behind the line.
  std::string Ask(const std::string& line, const std::string& keys) {
    Type(line + "\r");
    Expect("\n");
    Type(keys);
    const std::string printed = Expect("<boot>");
    return printed.substr(0, printed.size() - std::string("<boot>").size());
  }

  template <std::size_t kCount>
  void ExpectAll(const Exchange (&exchanges)[kCount]) {
    for (const Exchange& exchange : exchanges) {
      EXPECT_EQ(Ask(exchange.line, exchange.keys), exchange.printed) << exchange.line;
    }
  }

  std::string Modes() { return Run("stty -a < " + ConsolePath()); }
};

TEST_F(RemoteTools, ConnectionsAskForTheAddressFirstAndIgnoreCtrlC) {
  const std::string root = "login as:root\n";
  const Exchange kExchanges[] = {
      {"telnet 127.0.0.1", "", "/bin/telnet <127.0.0.1> uninterrupted unstopped echoing\n"},
      {"telnet ipv6 0:0::0:1", "", "/bin/telnet <::1> uninterrupted unstopped echoing\n"},
      {"telnet 0.0.0.0", "", kInvalid},
      {"telnet ipv6 ::", "", kUnrecognized},
      {"ssh2 127.0.0.1", "root\r", root + "/bin/ssh <127.0.0.1> <-l> <root> uninterrupted unstopped echoing\n"},
      {"ssh2 ipv6 ::1", "root\r", root + "/bin/ssh <::1> <-l> <root> uninterrupted unstopped echoing\n"},
      {"ssh2 239.1.1.1", "", kInvalid},
      {"ssh2 ipv6 ::0", "", kUnrecognized},
      {"ssh2 127.0.0.1", "\r", "login as:\n"},
      {"ssh2 127.0.0.1", "roo\003", "login as:roo\n"},
      {"ssh2 127.0.0.1", "root -v\r", "login as:root -v\n"},
      {"ssh2 127.0.0.1", " root \r",
       "login as: root \n/bin/ssh <127.0.0.1> <-l> <root> uninterrupted unstopped echoing\n"},
  };
  BootWithRecorders();
  const std::string modes = Modes();
  ExpectAll(kExchanges);
  EXPECT_EQ(Modes(), modes);
}

TEST_F(RemoteTools, PingsPassTheirOptionsInTheOrderTyped) {
  const char kWrong[] = " % Wrong parameter found at '^' position.\n";
  const Exchange kExchanges[] = {
      {"ping 127.0.0.1", "", "/bin/ping <-4> <-c> <5> <127.0.0.1>\n"},
      {"ping -c 007 127.0.0.1", "", "/bin/ping <-4> <-c> <007> <127.0.0.1>\n"},
      {"ping -s 8100 127.0.0.1", "", "/bin/ping <-4> <-c> <5> <-s> <8100> <127.0.0.1>\n"},
      {"ping -c 3 -s 100 127.0.0.1", "", "/bin/ping <-4> <-c> <3> <-s> <100> <127.0.0.1>\n"},
      {"ping -s 100 -c 3 127.0.0.1", "", "/bin/ping <-4> <-s> <100> <-c> <3> <127.0.0.1>\n"},
      {"ping ipv6 ::1", "", "/bin/ping <-6> <-c> <5> <::1>\n"},
      {"ping ipv6 -c 2147483647 ::1", "", "/bin/ping <-6> <-c> <2147483647> <::1>\n"},
      {"ping ipv6 -s 20 ::1", "", "/bin/ping <-6> <-c> <5> <-s> <20> <::1>\n"},
      {"ping ipv6 -c 3 -s 100 ::1", "", "/bin/ping <-6> <-c> <3> <-s> <100> <::1>\n"},
      {"ping ipv6 -s 100 -c 3 ::1", "", "/bin/ping <-6> <-s> <100> <-c> <3> <::1>\n"},
      {"ping 255.255.255.255", "", kInvalid},
      {"ping -c 1 224.0.0.1", "", kInvalid},
      {"ping ipv6 -s 20 ::", "", "Invalid IPv6 address.\n"},
      {"ping -s 19 127.0.0.1", "", std::string(14, ' ') + "^\n" + kWrong},
  };
  BootWithRecorders();
  ExpectAll(kExchanges);
  EXPECT_EQ(Command("system-view"), "System View: return to User View with Ctrl+Z\n");
  EXPECT_EQ(Command("ping 127.0.0.1"), kExchanges[0].printed);
  EXPECT_NE(Command("telnet 127.0.0.1").find("Unrecognized"), std::string::npos);
  EXPECT_EQ(Command("interface m-eth0"), "");
  EXPECT_EQ(Command("ping ipv6 ::1"), kExchanges[5].printed);
}

TEST_F(RemoteTools, TftpChecksAsksAndTransfers) {
  const std::string overwrite = "flash:/a already exists. Overwrite it?[Y/N]:";
  const std::string get = "/bin/tftp <-g> <-r> ";
  const Exchange kExchanges[] = {
      {"tftp 127.0.0.1 get x/b flash:/", "", get + "<x/b> <-l> </mnt/flash://b> <127.0.0.1>\n"},
      {"tftp ipv6 ::1 get b flash:", "", get + "<b> <-l> </mnt/flash:/b> <::1>\n"},
      {"tftp 127.0.0.1 get b new", "", get + "<b> <-l> </mnt/new> <127.0.0.1>\n"},
      {"tftp 127.0.0.1 get -v flash:", "", get + "<-v> <-l> </mnt/flash:/-v> <127.0.0.1>\n"},
      {"tftp 127.0.0.1 get b flash:/a", "y\r", overwrite + "y\n" + get + "<b> <-l> </mnt/flash:/a> <127.0.0.1>\n"},
      {"tftp 127.0.0.1 get b flash:/a", "n\r", overwrite + "n\n"},
      {"tftp 127.0.0.1 get b flash:/a", "y\003", overwrite + "y\n"},
      {"tftp ipv6 ::1 get b flash:/no/a", "", "tftp: can't open 'flash:/no/a': No such file or directory\n"},
      {"tftp 224.0.0.1 get b flash:/no/a", "", kInvalid},
      {"tftp ipv6 :: get b flash:/no/a", "", kUnrecognized},
      {"tftp 127.0.0.1 put a x/b", "", "/bin/tftp <-p> <-l> </mnt/flash:/a> <-r> <x/b> <127.0.0.1>\n"},
      {"tftp ipv6 ::1 put flash:/a -b", "", "/bin/tftp <-p> <-l> </mnt/flash:/a> <-r> <-b> <::1>\n"},
      {"tftp 127.0.0.1 put dir/ b", "", kWrongName},
      {"tftp ipv6 ::1 put no b", "", "tftp: can't open 'no': No such file or directory\n"},
      {"tftp ipv6 :: put no b", "", kUnrecognized},
  };
  BootWithRecorders();
  ExpectAll(kExchanges);
}

TEST_F(RemoteTools, FtpAsksWhoBeforeItLooksAtTheFiles) {
  const std::string login = kLogin;
  const std::string overwrite = login + "flash:/a already exists. Overwrite it?[Y/N]:";
  const std::string get = "/bin/ftpget <-u> <me> <-p> <pw> ";
  const std::string put = "/bin/ftpput <-u> <me> <-p> <pw> ";
  const Exchange kExchanges[] = {
      {"ftp 127.0.0.1 get x/b flash:/", "me\rpw\r", login + get + "<127.0.0.1> </mnt/flash://b> <x/b>\n"},
      {"ftp ipv6 ::1 get b flash:/dir", "me\rpw\r", login + get + "<::1> </mnt/flash:/dir/b> <b>\n"},
      {"ftp 127.0.0.1 get b flash:/a", "me\rpw\ry\r", overwrite + "y\n" + get + "<127.0.0.1> </mnt/flash:/a> <b>\n"},
      {"ftp ipv6 ::1 get b flash:/a", "me\rpw\r\003", overwrite + "\n"},
      {"ftp 127.0.0.1 get b flash:/no/", "me\rpw\r",
       login + "ftp: can't open 'flash:/no/': No such file or directory\n"},
      {"ftp 127.0.0.1 put a x/b", "me\rpw\r", login + put + "<127.0.0.1> <x/b> </mnt/flash:/a>\n"},
      {"ftp ipv6 ::1 put a b", "me\rpw\r", login + put + "<::1> <b> </mnt/flash:/a>\n"},
      {"ftp 127.0.0.1 put dir/ b", "me\rpw\r", login + kWrongName},
      {"ftp ipv6 ::1 put no b", "me\rpw\r", login + "ftp: can't open 'no': No such file or directory\n"},
      {"ftp 0.0.0.0 get b no", "", kInvalid},
      {"ftp ipv6 :: put a b", "", kUnrecognized},
      {"ftp ipv6 :: get b flash:/no/", "me\rpw\r", login + kUnrecognized},
      {"ftp 127.0.0.1 get b flash:", "\003pw\r", "user:\npassword:**\n"},
      {"ftp ipv6 ::1 put a b", "me\rp\003", "user:me\npassword:*\n"},
      {"ftp 127.0.0.1 get b flash:", "me x\rpw\r", "user:me x\npassword:**\n"},
      {"ftp 127.0.0.1 get b flash:", "me\rp w\r", "user:me\npassword:***\n"},
      {"ftp 127.0.0.1 get -v flash:", "", kWrongName},
      {"ftp 127.0.0.1 get ./-v flash:", "me\rpw\r", login + get + "<127.0.0.1> </mnt/flash://-v> <./-v>\n"},
      {"ftp ipv6 ::1 put a --", "", kWrongName},
  };
  BootWithRecorders();
  const std::string modes = Modes();
  ExpectAll(kExchanges);
  EXPECT_EQ(Modes(), modes);
}

TEST_F(RemoteTools, HelpNamesWhatMayBeTyped) {
  const Exchange kLines[] = {
      {"ftp ", "", "  X.X.X.X  IP address of FTP server \n  ipv6     IPv6 information\n"},
      {"ftp 127.0.0.1 ", "", "  get  Download file from the remote host\n  put  Upload file to the remote host\n"},
      {"tftp ipv6 ::1 ", "", "  get  Download file from the remote host\n  put  Upload file to the remote host \n"},
      {"tftp ipv6 ", "", "  X:X::X:X  IPv6 address of TFTP server\n"},
      {"ftp 127.0.0.1 get ", "", "  STRING  Remote file name\n"},
      {"ftp 127.0.0.1 put a ", "", "  STRING  Remote file name\n"},
      {"tftp 127.0.0.1 get b flash:/", "", "  STRING\n  flash:/a\n  flash:/dir/\n"},
      {"tftp 127.0.0.1 put d", "", "  dir/\n"},
      {"ping -c 1 -s ", "", "  INTEGER<20-8100>  The length of an ICMP echo request\n"},
      {"ping ipv6 -s 20 -c ", "", "  INTEGER<1-2147483647>  The number of times that an echo request is sent\n"},
  };
  BootWithRecorders();
  for (const Exchange& help : kLines) {
    const std::string line = help.line;
    Type(line + "?");
    Expect("?\r\r\n");
    EXPECT_EQ(Expect("<boot>" + line), help.printed + "\n<boot>" + line);
    Type(std::string(line.size(), '\177'));
  }
}

TEST_F(RemoteTools, CtrlCEndsThemAndAPasswordIsNotSeen) {
  BootToPrompt();
  Run("ifconfig lo up");
  const std::string modes = Modes();
  Type("ping -c 1000 127.0.0.1\r");
  Expect("seq=1");
  Type(kCtrlC);
  Expect("packets transmitted");
  Expect("<boot>");
  EXPECT_EQ(Modes(), modes);
  EXPECT_NE(Ask("ftp 127.0.0.1 get b flash:", "me\rseekrit\r").find("Connection refused"), std::string::npos);
  Type(kUp);
  EXPECT_EQ(Expect("flash:"), "ftp 127.0.0.1 get b flash:");
  EXPECT_EQ(Printed().find("seekrit"), std::string::npos);
}

TEST_F(RemoteTools, ServerKeysAreForgotten) {
  const std::string known = "/root/.ssh/known_hosts";
  BootToPrompt();
  EXPECT_EQ(Command("reset ssh public-key"), "");
  Run("mkdir -p /root/.ssh && echo key > " + known + " && touch /root/.ssh/config");
  EXPECT_EQ(Command("reset ssh public-key"), "");
  EXPECT_EQ(Run("ls /root/.ssh"), "config\n");
}

}  // namespace
