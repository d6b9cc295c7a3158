#include "tests/device/operator_console.h"

namespace {

/// A shell of which a chosen call fails.
class NativeFileFaults : public OperatorConsole {
 protected:
  void SetUp() override {
    options.host_files.push_back({ESH_FAULTS_LIBRARY, "/lib/faults.so"});
    options.environment.emplace_back("LD_PRELOAD=/lib/faults.so");
    options.environment.emplace_back("ASAN_OPTIONS=verify_asan_link_order=0:allocator_may_return_null=1");
    UseDevice();
    Run("cd /tmp && dd if=/dev/urandom of=a bs=1000 count=100 2>/dev/null");
  }

  void Plan(const std::string& plan) { ASSERT_TRUE(Device().WriteFile("/tmp/fault", plan)); }

  /// Has a call fail in the copy of a source of three blocks and a bit.
  void CopyWith(const std::string& plan) {
    Run("cp /tmp/a /mnt/flash:");
    Type("copy a x\r");
    Expect("[Y/N]:");
    Plan(plan);
    Type("y\r");
  }
};

TEST_F(NativeFileFaults, ACopyWithoutMemoryLeavesNoPart) {
  CopyWith("large-malloc 1 ENOMEM");
  Expect("Failed to finish the operation because of insufficient storage space");
  EXPECT_EQ(Run("ls /mnt/flash:"), "a\n");
}

/// Loses each block of memory in turn. From a part of the names TAB would take the only one, which "dir" then lists.
TEST_F(NativeFileFaults, TABTakesNoPartOfTheNamesForAll) {
  Run("touch /mnt/flash:/flash.txt");
  for (const std::string key : {"?", "\t"}) {
    std::string said;
    int number = 0;
    for (bool is_due = true; is_due && number < 200;) {
      Type("dir fl");
      Expect("dir fl");
      Plan("malloc " + std::to_string(++number) + " ENOMEM");
      Type(key);
      Expect("<boot>");
      is_due = Run("cat /tmp/fault; rm /tmp/fault") == "due\n";
      Type("\r");
      said = Expect("<boot>");
      EXPECT_EQ(said.find("Directory of"), std::string::npos) << number << said;
    }
    EXPECT_NE(said.find(key == "?" ? "dir fl\n" : "dir flash\n"), std::string::npos) << number << said;
    EXPECT_GT(number, 10);
  }
}

TEST_F(NativeFileFaults, AShellKilledInACopyLosesNoSource) {
  CopyWith("write 2 KILL");
  Expect("Press Enter to start the emergency shell again");
  Run("cmp /mnt/flash:/a /tmp/a");
}

}  // namespace
