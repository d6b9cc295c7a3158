#include "tests/device/lab_console.h"

namespace {

constexpr char kPassword[] = "harbour";
/// Behind its prompt the far shell asks where the cursor is.
constexpr char kFarPrompt[] = "\x1b[6n";

/// Logs in on the lab's hosts; with the lab's own files, for its account owns them.
class Logins : public LabConsole {
 protected:
  /// Types an answer once it is asked for: what is typed before a password is asked for is thrown away.
  void Answer(const std::string& question, const std::string& answer) {
    Expect(question);
    Type(answer + "\r");
  }
  void LogInByTelnet(const std::string& address) {
    Type("telnet " + address + "\r");
    Answer("lab login: ", "operator");
    Answer("Password: ", kPassword);
    Expect(kFarPrompt);
  }
  void LogInBySsh(const std::string& address) {
    Type("ssh2 " + address + "\r");
    Answer("login as:", "operator");
    Answer("(yes/no/[fingerprint])? ", "yes");
    Answer("password: ", kPassword);
    Expect(kFarPrompt);
  }
  void ExpectPrompt() {
    Expect("<boot>");
    EXPECT_EQ(Modes(), PromptModes());
  }
};

TEST_F(Logins, ReachAShellAndComeBack) {
  UseLab();
  for (const bool secure : {false, true}) {
    for (const char* address : {"10.0.0.1", "ipv6 fd00:1::1"}) {
      SCOPED_TRACE(std::string(secure ? "ssh2 " : "telnet ") + address);
      secure ? LogInBySsh(address) : LogInByTelnet(address);
      Type("echo $USER at $(hostname); cat\r");
      Expect("operator at lab");
      Type("twice\r");
      Expect("twice\r\ntwice");  // what runs there is there
      Type(kCtrlC);              // ends it, not the connection
      Expect(kFarPrompt);
      Type("ls\r");
      Expect("readme.txt");
      Type("exit\r");
      ExpectPrompt();
    }
  }
  EXPECT_EQ(Run("wc -l < /root/.ssh/known_hosts"), "2\n");
  Run("touch /root/.ssh/config");
  EXPECT_EQ(Command("reset ssh public-key"), "");
  EXPECT_EQ(Run("ls /root/.ssh"), "config\n");
  EXPECT_EQ(Command("reset ssh public-key"), "") << "there is none";
  EXPECT_EQ(Printed().find(kPassword), std::string::npos);
}

TEST_F(Logins, AndPingsThatBreakLeaveThePrompt) {
  UseLab();
  LogInBySsh("10.0.0.1");
  SignalSessions("dropbear", "KILL");
  Expect("Connection to 10.0.0.1 closed");
  ExpectPrompt();

  LogInByTelnet("ipv6 fd00::1");
  EXPECT_TRUE(Board().PlugCable(false));
  Type("\x1d");
  Expect("exit telnet");
  Type("e");
  ExpectPrompt();
  EXPECT_NE(Command("display interface m-eth0").find("state: DOWN"), std::string::npos);
  EXPECT_TRUE(Board().PlugCable(true));
  EXPECT_NE(Command("ping ipv6 -c 1 fd00:1::1").find(" 0% packet loss"), std::string::npos);

  Type("ping -c 1000 10.0.0.1\r");
  Expect("seq=1");
  Type(kCtrlC);
  Expect("packets transmitted");
  ExpectPrompt();
}

}  // namespace
