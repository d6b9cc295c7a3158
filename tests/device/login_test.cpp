#include "tests/device/lab_console.h"

namespace {

constexpr char kPassword[] = "harbour";
/// Behind its prompt the far shell asks where the cursor is.
constexpr char kFarPrompt[] = "\x1b[6n";

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
  options.lab_directory.clear();  // the account owns the lab's own files
  BootIntoLab();
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
  EXPECT_EQ(Command("reset ssh public-key"), "");
  EXPECT_EQ(Printed().find(kPassword), std::string::npos);
}

TEST_F(Logins, ThatBreakLeaveThePrompt) {
  BootIntoLab();
  Type("telnet 10.0.0.1\r");
  Answer("lab login: ", "operator");
  Answer("Password: ", "wrong");
  Expect("Login incorrect");
  Type("\x1d");
  Expect("exit telnet");
  Type("e");
  ExpectPrompt();

  LogInByTelnet("10.0.0.1");
  SignalSessions("login", "KILL");
  Expect("Connection closed by foreign host");
  ExpectPrompt();

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
  EXPECT_NE(Ask("ping -c 1 10.0.0.1", "").find("100% packet loss"), std::string::npos);
  EXPECT_TRUE(Board().PlugCable(true));
  for (const char* line :
       {"ping -c 2 10.0.0.1", "ping -c 2 10.1.0.1", "ping ipv6 -c 2 fd00::1", "ping ipv6 -c 2 fd00:1::1"})
    EXPECT_NE(Ask(line, "").find(" 0% packet loss"), std::string::npos) << line;
}

}  // namespace
