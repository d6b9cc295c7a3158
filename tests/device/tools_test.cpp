#include "tests/device/operator_console.h"

namespace {

/// A tool that the shell starts: in place of ping, what a test puts there.
struct Tools : OperatorConsole {
  void SetUp() override {
    Replace("/bin/ping", "#!/bin/sh\n. /tmp/tool\n");
    UseDevice();
  }

  void StartTool(const std::string& script) {
    ASSERT_TRUE(Device().WriteFile("/tmp/tool", script));
    Press("ping 127.0.0.1\r", "127.0.0.1\r\r\n");  // the line's end before anything that the tool says
  }
};

TEST_F(Tools, LeaveTheTerminalToTheShellHoweverTheyEnd) {
  const std::pair<const char*, const char*> kLeavers[] = {
      {"ends in modes of its own", "stty raw -echo -opost min 9 time 9\n"},
      {"is killed in modes of its own", "stty raw -opost -icrnl min 9; kill -9 $$\n"},
      {"stops itself and is killed", "stty -onlcr; (sleep 0.2; kill -9 $$) & kill -STOP $$\n"},
      {"leaves a child in the terminal", "trap '' HUP; stty -opost; sleep 1 & exit 3\n"},
  };
  const std::string modes = Modes();
  for (const auto& [why, script] : kLeavers) {
    SCOPED_TRACE(why);
    StartTool(script);
    Expect("<boot>");
    EXPECT_EQ(Modes(), modes);
    EXPECT_EQ(Command("pwd"), "flash:\n");
  }
  StartTool("stty ixon stop ^S; echo ready; sleep 0.5\n");
  Expect("ready");
  Press("\x13", "<boot>");  // its output stops, but not the shell's
}

TEST_F(Tools, ReadWhatIsTypedWhileTheyRunAndLeaveTheRest) {
  StartTool("echo ready; sleep 0.3; read -r first; echo tool got $first\n");
  Expect("ready");
  // Some keys would stop or end it, or its output.
  Press("for\x1a the\x1c\x13 tool\rpwd\rdir cf", "tool got for\x1a the\x1c\x13 tool");
  Expect("<boot>pwd\r\r\nflash:\r\r\n<boot>dir cf");
  Press("a0:\r", "The directory is empty.");
}

TEST_F(Tools, ThatStopAreWaitedFor) {
  StartTool("echo $$ > /tmp/pid; kill -STOP $$; echo went on\n");
  Run("until grep -q 'State:.*stopped' /proc/$(cat /tmp/pid)/status; do sleep 0.1; done");
  Type("\x1apwd\r");
  Run("kill -CONT $(cat /tmp/pid)");
  EXPECT_EQ(Expect("went on\r\n").find("<boot>"), std::string::npos) << "the shell did not wait";
  Expect("<boot>");
}

TEST_F(Tools, SignalsToTheShellDoNotEndIt) {
  const std::string pid = ShellPid();
  Run("kill -INT " + pid + "; kill -HUP " + pid + "; kill -PIPE " + pid + "; kill -TTOU " + pid);
  EXPECT_EQ(Command("pwd"), "flash:\n");
  StartTool("trap 'echo hit; x=1' INT; echo ready; until [ $x ]; do sleep 0.1; done; read -r a; echo got $a\n");
  Expect("ready");
  Run("kill -INT " + pid);
  Expect("hit");  // which the shell passes on
  Press("still here\r", "got still here");
  Expect("<boot>");
}

}  // namespace
