#include "tests/device/operator_console.h"

namespace {

constexpr char kPassword[] = "harbour";
/// Behind its prompt the far shell asks where the cursor is.
constexpr char kFarPrompt[] = "\x1b[6n";

/// A device that is connected with real servers.
struct Lab : OperatorConsole {
  void SetUp() override {
    options.has_lab_servers = true;
    UseDevice();
    ASSERT_NE(Device().LabNotice().find("servers  ftp tftp telnet ssh2 "), std::string::npos) << Device().LabNotice();
    for (const char* line : {"system-view", "interface m-eth0", "ip address 10.0.0.2 24", "ipv6 address fd00::2 64",
                             "ip gateway 10.0.0.254", "ipv6 gateway fe80::1", "quit", "quit"})
      Command(line);
    Run("rm -rf /root/.ssh/*");  // the hosts that another test came to know
    modes_ = Modes();
  }

  void LogIn(const std::string& line) {
    const bool is_secure = line.starts_with("ssh2");
    Press(line + "\r", is_secure ? "login as:" : "lab login: ");
    if (is_secure) Press("operator\r", "(yes/no/[fingerprint])? ");
    Press(is_secure ? "yes\r" : "operator\r", "assword: ");
    // Telnet's far login asks for the password first and then stops the echo and drops what was typed.
    constexpr char kWait[] =
        "for _ in $(seq 200); do stty -a -F /proc/$(busybox pidof login)/fd/0 | grep -q -- -echo' ' && exit;"
        " sleep 0.05; done; exit 1";
    if (!is_secure) EXPECT_EQ(Device().RunInLab(kWait).status, 0);
    Press(std::string(kPassword) + "\r", kFarPrompt);
  }
  void PressToPrompt(std::string_view keys) {
    Press(keys, "<boot>");
    EXPECT_EQ(Modes(), modes_);
  }

  std::string modes_;
};

TEST_F(Lab, TransfersBringWhatWasSent) {
  const std::string login = std::string("operator\r") + kPassword + "\r";
  const std::pair<const char*, std::string> ways[] = {
      {"tftp 10.0.0.1", ""}, {"tftp ipv6 fd00::1", ""}, {"ftp 10.1.0.1", login}, {"ftp ipv6 fd00:1::1", login}};
  for (const auto& [command, answers] : ways) {
    for (const char* line : {" get startup.cfg flash:/here", " put here back", " get back flash:/again"})
      Command(std::string(command) + line, answers);
    Run("cd /mnt/flash: && grep -q sysname here && cmp here again && rm here again");
  }
}

TEST_F(Lab, LoginsReachAShellAndComeBack) {
  for (const char* line : {"telnet 10.0.0.1", "telnet ipv6 fd00:1::1", "ssh2 10.0.0.1", "ssh2 ipv6 fd00:1::1"}) {
    SCOPED_TRACE(line);
    LogIn(line);
    Press("echo $USER at $(hostname); cat\r", "operator at lab");
    Press("twice\r", "twice\r\ntwice");  // what runs there is there
    Press(kCtrlC, kFarPrompt);           // ends it, not the connection
    Press("ls\r", "readme.txt");
    PressToPrompt("exit\r");
  }
  EXPECT_EQ(Run("wc -l < /root/.ssh/known_hosts"), "2\n");
  Run("touch /root/.ssh/config");
  EXPECT_EQ(Command("reset ssh public-key"), "");
  EXPECT_EQ(Run("ls /root/.ssh"), "config\n");
  EXPECT_EQ(printed_.find(kPassword), std::string::npos);
}

TEST_F(Lab, LoginsAndPingsThatBreakLeaveThePrompt) {
  LogIn("ssh2 10.0.0.1");
  // All but the server itself, which is the oldest. One that ends just now by itself is no fault.
  Device().RunInLab("kill -KILL $(busybox pidof dropbear | tr ' ' '\\n' | sort -n | tail -n +2)");
  Expect("Connection to 10.0.0.1 closed");
  PressToPrompt("");

  LogIn("telnet ipv6 fd00::1");
  EXPECT_TRUE(Device().PlugCable(false));
  Press("\x1d", "exit telnet");
  PressToPrompt("e");
  EXPECT_NE(Command("display interface m-eth0").find("state: DOWN"), std::string::npos);
  EXPECT_TRUE(Device().PlugCable(true));
  EXPECT_NE(Command("ping ipv6 -c 1 fd00:1::1").find(" 0% packet loss"), std::string::npos);

  Press("ping -c 1000 10.0.0.1\r", "seq=1");
  Press(kCtrlC, "packets transmitted");
  PressToPrompt("");
}

}  // namespace
