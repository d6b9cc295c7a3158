#include <random>

#include "tests/device/operator_console.h"
#include "tests/support/virtual_screen.h"

namespace {

class CommandLine : public OperatorConsole {};
/// With windows, which a serial line has not, and with more lines than an emulated machine gets through in time.
class NativeCommandLine : public OperatorConsole {};

TEST_F(CommandLine, SurvivesRubbish) {
  UseDevice();
  std::mt19937 random(20261124);  // the same rubbish in every run
  for (int round = 0; round < 20; ++round) {
    std::string rubbish(300, '\0');
    for (char& byte : rubbish) byte = static_cast<char>(random());
    Type(rubbish);
    Listen(std::chrono::milliseconds(30));
  }
  int tries = 0;
  EXPECT_TRUE(Eventually([&] {
    const std::string mark = "mark" + std::to_string(++tries);
    Type(std::string(kCtrlZ) + mark + "\r");
    Listen(std::chrono::milliseconds(200));  // an escape sequence at the end of the rubbish takes with it what follows
    return Printed().find(mark) != std::string::npos && Printed().ends_with("<boot>");
  }));
  EXPECT_EQ(Command("pwd"), "flash:\n");
}

TEST_F(NativeCommandLine, PutsTheCaretBelowTheWordWhereverTheScreenWraps) {
  constexpr int kColumns = 20;
  options.columns = kColumns;
  BootToPrompt();
  for (const int column : {kColumns - 1, kColumns, kColumns + 1, 2 * kColumns - 1, 2 * kColumns}) {
    const std::string start = "<boot>dir";
    const std::size_t before = Printed().size() - std::string_view("<boot>").size();
    Command("dir" + std::string(static_cast<std::size_t>(column) - start.size(), ' ') + "|");
    VirtualScreen screen(24, kColumns);
    screen.Write(std::string_view(Printed()).substr(before));
    std::string ends;  // of the rows that reach as far as the word does
    for (int row = 0; row < screen.Rows(); ++row) {
      const std::string text = screen.Row(row);
      if (static_cast<int>(text.size()) == column % kColumns + 1) ends += text.back();
    }
    EXPECT_EQ(ends.substr(0, 2), "|^") << column << "\n" << screen.Text();
  }
}

struct Terminal {
  std::optional<std::string> term;
  unsigned short columns;
  const char* notice;
};

TEST_F(NativeCommandLine, IsThereOnEveryTerminal) {
  const Terminal kTerminals[] = {
      {"xterm", 1, ""},
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

/// What the shell occupies.
struct Usage {
  long kilobytes = 0;
  std::string descriptors;
};

TEST_F(NativeCommandLine, LeavesNothingBehind) {
  constexpr long kPageNoise = 64;  // kilobytes; a pointer lost with every line would be more
  options.environment.emplace_back("ASAN_OPTIONS=quarantine_size_mb=1");  // what was freed would be kept, and counted
  BootToPrompt();
  const std::string process = "/proc/" + ShellPid();
  const auto usage_after = [&](int rounds) {
    for (int round = 0; round < rounds; ++round)
      Type(
          "dir\rdir nothing\rnothing\rpwd x\rsystem-view\rinterface m-eth0\rquit\rquit\r"
          "dir fl\t\t?\x1a");
    Type("that is all\r");
    Expect("that is all");
    Expect("Unrecognized");
    Expect("<boot>");
    return Usage{std::stol(Run("awk '/VmRSS/ {print $2}' " + process + "/status")), Run("ls " + process + "/fd")};
  };
  const Usage early = usage_after(250);  // the sanitizer's stores of free blocks grow until then, and no more
  const Usage late = usage_after(400);
  EXPECT_LE(late.kilobytes, early.kilobytes + kPageNoise);
  EXPECT_EQ(late.descriptors, early.descriptors);
}

}  // namespace
