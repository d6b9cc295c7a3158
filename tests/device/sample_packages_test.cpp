#include <gtest/gtest.h>

#include <string>

#include "tests/device/operator_console.h"

namespace {

/// A device with the sample packages, which the package tool made.
class SamplePackages : public OperatorConsole {
 protected:
  void SetUp() override {
    OperatorConsole::SetUp();
    device::FillWithSamples(options.media);
  }
};

TEST_F(SamplePackages, LoadedSystemTakesTheConsole) {
  for (const std::string package : {"system.bin", "system-xz.bin", "system-7z.bin"}) {
    BootToPrompt();  // nothing is left of what the boot before unpacked
    Command("display install package " + package);
    EXPECT_NE(Printed().find("  Product version: Release 0612"), std::string::npos) << package;
    Type("install load " + package + "\r");
    Expect("has taken over from the emergency shell");
    Expect("Loaded package: flash:/" + package);
    Type("quit\r");
    Expect("<Tessaro>");
  }
}

TEST_F(SamplePackages, BadOnesAreRefusedAndLeaveNothing) {
  struct Case {
    const char* name;
    const char* line;
  };
  constexpr Case kCases[] = {
      {"forged", "flash:/bad/forged.bin is corrupted.\n"},
      {"truncated", "flash:/bad/truncated.bin is corrupted.\n"},
      {"foreign", "flash:/bad/foreign.bin is corrupted.\n"},
      {"incompatible", "This system image is not compliant with the boot image.\n"},
  };
  BootToPrompt();
  for (const Case& c : kCases) {
    const std::string printed = Command(std::string("install load flash:/bad/") + c.name + ".bin");
    EXPECT_TRUE(printed.ends_with(c.line)) << c.name << ": " << printed;
  }
  EXPECT_EQ(Run("ls /tmp /sbin/tessaro /var/pkg 2>/dev/null || :"), "/tmp:\n");
}

}  // namespace
