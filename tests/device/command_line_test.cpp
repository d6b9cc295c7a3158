#include <algorithm>
#include <random>

#include "tests/device/operator_console.h"

namespace {

class CommandLine : public OperatorConsole {};

struct Exchange {
  const char* line;
  const char* answer;
};

TEST_F(CommandLine, TellsWhatIsWrongUnderTheWord) {
  const Exchange kExchanges[] = {
      {"nothing", "      ^\n % Unrecognized command found at '^' position.\n"},
      {"  pwd x", "            ^\n % Too many parameters found at '^' position.\n"},
      {"dir /mnt", "          ^\n % Wrong parameter found at '^' position.\n"},
      {"", ""},
      {"   ", ""},
      {"SYS", "System View: return to User View with Ctrl+Z\n"},
      {"interface", "                ^\n % Incomplete command found at '^' position.\n"},
      {"int M-ETH0", ""},
      {"reboot", "             ^\n % Unrecognized command found at '^' position.\n"},
      {"q", ""},
      {"quit", ""},
      {"quit", "      ^\n % Unrecognized command found at '^' position.\n"},
  };
  BootToPrompt();
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(Command(exchange.line), exchange.answer) << exchange.line;
  }
}

TEST_F(CommandLine, PutsTheCaretUnderAWordThatTheScreenWraps) {
  options.columns = 40;
  BootToPrompt();
  const std::string line = "dir " + std::string(40, ' ') + "|";  // 6 + 44 columns: the word stands in column 10
  Type(line + "\r");
  Expect("Wrong parameter");
  Listen(std::chrono::milliseconds(50));
  int row = 0;
  while (Screen().Row(row).find('|') == std::string::npos && row < Screen().Rows() - 1) {
    ++row;
  }
  // The caret's row wraps as the line did, so the caret is below the word.
  EXPECT_EQ(Screen().Row(row).find('|'), 10U);
  EXPECT_EQ(Screen().Row(row + 2).find('^'), 10U) << Screen().Text();
}

TEST_F(CommandLine, CtrlZReturnsToTheUserViewWhateverIsTyped) {
  BootToPrompt();
  Command("system-view");
  Command("interface m-eth0");
  Type("half a line");
  Type(kCtrlZ);
  Expect("<boot>");
  EXPECT_EQ(Command("pwd"), "flash:\n") << "the half line is gone";
}

TEST_F(CommandLine, HelpAndCompletionFollowTheView) {
  BootToPrompt();
  Type("?");
  EXPECT_NE(Expect("<boot>").find("User view commands:\n"), std::string::npos);
  Type("sy\t");
  Expect("<boot>system-view ");
  Type("\r");
  Expect("[boot]");
  Type("?");
  EXPECT_EQ(Expect("[boot]"),
            "?\nSystem view commands:\n"
            "  interface  Interface configuration\n"
            "  quit       Return to a lower-level view\n\n[boot]");
  Type("int\tm\t\r");
  Expect("[boot-m-eth0]");
  Type("?");
  EXPECT_NE(Expect("[boot-m-eth0]").find("M-th view commands:\n"), std::string::npos);
}

TEST_F(CommandLine, TakesLinesOf511Characters) {
  BootToPrompt();
  const std::string longest = "pwd" + std::string(508, ' ');
  EXPECT_TRUE(Command(longest).ends_with("\nflash:\n"));
  EXPECT_TRUE(
      Command("dir " + std::string(507, 'x')).ends_with("\n          ^\n % Wrong parameter found at '^' position.\n"));
  const std::size_t before = Printed().size();
  Type(longest + "x");
  Listen(std::chrono::milliseconds(300));
  const std::string bells = Printed().substr(before);
  EXPECT_EQ(std::count(bells.begin(), bells.end(), '\a'), 2) << "the 512th is refused, with two bells";
  Type("\r");
  Expect("flash:");
}

TEST_F(CommandLine, SurvivesRubbish) {
  BootToPrompt();
  std::mt19937 random(20261124);  // NOLINT(cert-msc51-cpp): the same rubbish in every run
  for (int round = 0; round < 20; ++round) {
    std::string rubbish(300, '\0');
    for (char& byte : rubbish) {
      byte = static_cast<char>(random());
    }
    Type(rubbish);
    Listen(std::chrono::milliseconds(30));
  }
  Type("\r");
  Type(kCtrlZ);
  Listen(std::chrono::milliseconds(300));  // a half escape sequence eats what follows at once
  Type(kCtrlC);                            // in case a question waits
  Type("n\r\r");
  Listen(std::chrono::milliseconds(300));
  EXPECT_EQ(Command("pwd"), "flash:\n");
}

TEST_F(CommandLine, TakesAPasteLineByLine) {
  BootToPrompt();
  std::string paste;
  for (int i = 0; i < 100; ++i) {
    paste += "pwd\r";
  }
  Type(paste);
  for (int i = 0; i < 100; ++i) {
    Expect("flash:\r\r\n");
  }
}

struct Terminal {
  std::optional<std::string> term;
  unsigned short columns;
  const char* notice;
};

TEST_F(CommandLine, IsThereOnEveryTerminal) {
  const Terminal kTerminals[] = {
      {"xterm", 1, ""},
      {"xterm", 2, ""},
      {"xterm", 20, ""},
      {"vt100", 80, ""},
      {"linux", 80, ""},
      {"dumb", 80, ""},
      {"xterm", 0, ""},
      {std::nullopt, 80, "Terminal type \"\" is unknown, \"vt100\" is used instead.\n"},
      {"nonsense", 80, "Terminal type \"nonsense\" is unknown, \"vt100\" is used instead.\n"},
  };
  for (const Terminal& terminal : kTerminals) {
    SCOPED_TRACE(terminal.term.value_or("no TERM"));
    options.term = terminal.term;
    options.columns = terminal.columns;
    options.rows = terminal.columns == 0 ? 0 : 24;
    NewDevice();
    Boot();
    EXPECT_NE(Expect("<boot>").find(terminal.notice), std::string::npos);
    Type(
        "pwx\x7f"
        "d\r");
    Expect("flash:\r\r\n");
  }
}

TEST_F(CommandLine, LeavesNothingBehind) {
  BootToPrompt();
  const std::string pid = ShellPid();
  const std::string usage = "grep VmRSS /proc/" + pid + "/status; ls /proc/" + pid + "/fd | wc -l";
  const auto round = [&] {
    for (int i = 0; i < 100; ++i) {
      Type(
          "dir\rdir nothing\rnothing\rsystem-view\r?\x1a"
          "dir flash:/\tx?\x1a");
      Listen(std::chrono::milliseconds(5));
    }
    Command("");
    Command("pwd");
  };
  round();
  const std::string early = Run(usage);
  round();
  round();
  EXPECT_EQ(Run(usage), early);
}

}  // namespace
