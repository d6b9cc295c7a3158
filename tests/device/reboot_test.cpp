#include "tests/device/operator_console.h"

namespace {

constexpr char kQuestion[] = "This Command will reboot the device. Continue? [Y/N]:";

class Reboot : public OperatorConsole {};

TEST_F(Reboot, IsCalledOffByANoAndKeepsTheMedia) {
  BootToPrompt();
  EXPECT_EQ(Command("reboot", "n\r"), std::string(kQuestion) + "n\n");
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
