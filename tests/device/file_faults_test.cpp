#include "tests/device/operator_console.h"

namespace {

/// A shell that gets a chosen block of memory not.
class NativeFileFaults : public OperatorConsole {
 protected:
  void SetUp() override {
    options.host_files.push_back({ESH_FAULTS_LIBRARY, "/lib/faults.so"});
    options.environment.emplace_back("LD_PRELOAD=/lib/faults.so");
    options.environment.emplace_back("ASAN_OPTIONS=verify_asan_link_order=0:allocator_may_return_null=1");
    UseDevice();
    Run("touch /mnt/flash:/flash.txt");
  }

  void Plan(const std::string& plan) { ASSERT_TRUE(Device().WriteFile("/tmp/fault", plan)); }
};

TEST_F(NativeFileFaults, ACopyWithoutMemoryLeavesNoPart) {
  Type("copy flash.txt x\r");
  Expect("[Y/N]:");
  Plan("1 32768");  // only what is copied takes that much at once
  Type("y\r");
  Expect("Failed to finish the operation because of insufficient storage space");
  EXPECT_EQ(Run("ls /mnt/flash:"), "flash.txt\n");
}

/// Loses each block of memory in turn. From a part of the names TAB would take the only one, which "dir" then lists.
TEST_F(NativeFileFaults, TABTakesNoPartOfTheNamesForAll) {
  for (const std::string key : {"?", "\t"}) {
    std::string said;
    int number = 0;
    for (bool is_due = true; is_due && number < 200;) {
      Type("dir fl");
      Expect("dir fl");
      Plan(std::to_string(++number) + " 0");
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

}  // namespace
