#include <optional>
#include <tuple>

#include "tests/device/operator_console.h"

namespace {

/// With windows, which a serial line has not, and with more lines than an emulated machine gets through in time.
class NativeCommandLine : public OperatorConsole {};

TEST_F(NativeCommandLine, IsThereOnEveryTerminal) {
  const std::tuple<std::optional<std::string>, unsigned short, const char*> kTerminals[] = {
      {"xterm", 1, ""},
      {"xterm", 0, ""},
      {std::nullopt, 80, "Terminal type \"\" is unknown, \"vt100\" is used instead.\n"},
      {"nonsense", 80, "Terminal type \"nonsense\" is unknown, \"vt100\" is used instead.\n"},
  };
  for (const auto& [term, columns, notice] : kTerminals) {
    SCOPED_TRACE(term.value_or("no TERM"));
    options.term = term;
    options.columns = columns;
    options.rows = columns == 0 ? 0 : 24;
    NewDevice();
    Boot();
    EXPECT_NE(Expect("<boot>").find(notice), std::string::npos);
    Type("pwx\177d\r");
    Expect("flash:\r\r\n");
  }
}

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
    return std::pair(std::stol(Run("awk '/VmRSS/ {print $2}' " + process + "/status")), Run("ls " + process + "/fd"));
  };
  const auto [early_kilobytes, early_files] =
      usage_after(250);  // the sanitizer's stores of free blocks grow until then
  const auto [late_kilobytes, late_files] = usage_after(400);
  EXPECT_LE(late_kilobytes, early_kilobytes + kPageNoise);
  EXPECT_EQ(late_files, early_files);
}

}  // namespace
