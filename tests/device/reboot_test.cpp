#include "tests/device/operator_console.h"

namespace {

constexpr char kQuestion[] = "This Command will reboot the device. Continue? [Y/N]:";

class Reboot : public OperatorConsole {};

TEST_F(Reboot, IsCalledOffByEverythingButAYesAndKeepsTheMedia) {
  BootToPrompt();
  const std::pair<const char*, const char*> kAnswers[] = {
      {"n\r", "n\n"},
      {"\x03", "\n"},
      {"Nyy\n", "N\n"},
      {"y\x7fn\r", "n\n"},
      {"\rn\r", "\nBefore pressing ENTER you must choose 'YES' or 'NO'[Y/N]:n\n"},
  };
  for (const auto& [keys, shown] : kAnswers) {
    const std::string printed = Command("reboot", keys);
    EXPECT_TRUE(printed.starts_with(kQuestion) && printed.ends_with(shown)) << printed;
  }
  Run("echo kept > /mnt/flash:/kept.txt");
  Type("reb\r");
  Expect(kQuestion);
  Type("y\r");
  EXPECT_EQ(Outcome(), device::Outcome::kRebooted);
  EXPECT_EQ(Printed().find("<boot>", Printed().rfind(kQuestion)), std::string::npos) << "the tool has returned";
  BootToPrompt();
  EXPECT_NE(Command("dir").find("kept.txt"), std::string::npos);
}

}  // namespace
