#include "tests/device/operator_console.h"

namespace {

class Media : public OperatorConsole {
 protected:
  void SetUp() override {
    OperatorConsole::SetUp();
    options.environment.push_back("TZ=UTC0");
  }

  std::string FreeKilobytes(const std::string& medium) {
    const std::string free = Run("df -k /mnt/" + medium + " | tail -n 1 | awk '{print $4}'");
    return free.substr(0, free.find('\n'));
  }
};

/// On a file system that keeps names, sizes, modes and links as they are given.
class NativeMedia : public Media {};

TEST_F(NativeMedia, DirTellsTheTruthAboutEveryEntry) {
  UseDevice();
  const std::string long_name(255, 'n');
  Run("cd /mnt/flash:; truncate -s 123456789012 large; chmod 400 large; ln -s gone dangling; echo > gr\xc3\xbc\xc3\x9f;"
      "touch -d @0 large gr*; touch -d @1 old; chmod 0 old; touch -d @0 " +
      long_name);
  EXPECT_EQ(Command("dir"),
            "Directory of flash:\n"
            "     1      -rw-           1  Jan 01 1970 00:00:00     gr\xc3\xbc\xc3\x9f\n"
            "     2      -r--123456789012  Jan 01 1970 00:00:00     large\n"
            "     3      -rw-           0  Jan 01 1970 00:00:00     " +
                long_name +
                "\n"
                "     4      ----           0  Jan 01 1970 00:00:01     old\n"
                "\n32768 KB total (" +
                FreeKilobytes("flash:") + " KB free)\n");
  Type("dir g\t");
  Expect("dir gr\xc3\xbc\xc3\x9f ");
}

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
