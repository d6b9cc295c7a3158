#include "tests/device/operator_console.h"

namespace {

constexpr char kQuestion[] = "This Command will reboot the device. Continue? [Y/N]:";

class Reboot : public OperatorConsole {};

TEST_F(Reboot, RestartsTheDeviceWhichKeepsItsMedia) {
  BootToPrompt();
  Run("echo kept > /mnt/flash:/kept.txt");
  Type("reb\r");
  Expect(kQuestion);
  Type("y\r");
  EXPECT_EQ(Outcome(), device::Outcome::kRebooted);
  BootToPrompt();
  EXPECT_NE(Command("dir").find("kept.txt"), std::string::npos);
}

struct Answer {
  const char* keys;
  const char* shown;
};

TEST_F(Reboot, IsCalledOffByEverythingButAYes) {
  const Answer kAnswers[] = {
      {"n\r", "n\n"},
      {"\x03", "\n"},
      {"Nyy\n", "N\n"},
      {"y\x7fn\r", "n\n"},
      {"\rn\r", "\nBefore pressing ENTER you must choose 'YES' or 'NO'[Y/N]:n\n"},
  };
  BootToPrompt();
  for (const Answer& answer : kAnswers) {
    Type("reboot\r");
    Expect(kQuestion);
    Type(answer.keys);
    const std::string shown = Expect("<boot>");
    EXPECT_TRUE(shown.ends_with(std::string(answer.shown) + "<boot>")) << shown;
  }
  EXPECT_EQ(Command("pwd"), "flash:\n");
}

}  // namespace
