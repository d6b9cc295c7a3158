#include "tests/device/operator_console.h"

namespace {

class Media : public OperatorConsole {};
/// Where a medium can be removed under the shell.
class NativeMedia : public Media {};

TEST_F(Media, AFullMediumHasNothingFree) {
  UseDevice();
  ASSERT_TRUE(Board().FillMedium("cfa0:"));
  const std::string total = Run("df -k /mnt/cfa0: | awk 'END {printf $2}'");
  const std::string listing = Command("dir cfa0:");
  EXPECT_NE(listing.find("    " + Run("stat -c %s /mnt/cfa0:/fill | tr -d '\\n'") + "  "), std::string::npos)
      << listing;
  EXPECT_TRUE(listing.ends_with("\n" + total + " KB total (0 KB free)\n")) << listing;
}

TEST_F(Media, AMediumMayVanishWhileItIsListed) {
  UseDevice();
  Run("cd /mnt/cfa0:; for i in $(seq 30); do : > f$i; done");
  Type("dir cfa0:\r");
  Expect("---- More ----     ");
  ASSERT_TRUE(Board().PullMedium("cfa0:"));
  Type(" ");
  Expect("<boot>");
  EXPECT_EQ(Command("pwd"), "flash:\n");
  Run("rm /mnt/slot0#cfa0:");
  EXPECT_NE(Command("dir cfa0:").find("Wrong parameter"), std::string::npos);
  NewDevice();
}

TEST_F(NativeMedia, TheWorkingDirectoryMayVanish) {
  Replace("/etc/pkg/esh/mount.sh", "#!/bin/sh\nmkdir /mnt/flash: /mnt/cfa0:\n");
  options.media.clear();
  BootToPrompt();
  Run("rmdir /mnt/flash:");
  EXPECT_EQ(Command("dir"), "The file or directory doesn't exist.\n");
  Type("pwd\r");
  Expect("\nCheckInvalidFileDir<boot>");
  EXPECT_NE(Command("dir cfa0:").find("The directory is empty.\n\n"), std::string::npos);
}

}  // namespace
