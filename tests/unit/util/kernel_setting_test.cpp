#include "util/kernel_setting.h"

#include <unistd.h>

#include "shell/result.h"
#include "tests/support/private_root.h"

namespace {

constexpr int kSwitch[] = {7, 8, 1};
constexpr char kSwitchFile[] = "/proc/sys/7/8/1";

struct KernelSetting : PrivateRootTest {};

TEST_F(KernelSetting, IsWrittenAsTextToTheFileOfItsNumbers) {
  WriteFile(kSwitchFile, "0\n");
  EXPECT_EQ(WriteKernelSetting(kSwitch, 1), kSuccess);
  EXPECT_EQ(ReadFile(kSwitchFile), "1\n");
  EXPECT_EQ(WriteKernelSetting(kSwitch, 0), kSuccess);
  EXPECT_EQ(ReadFile(kSwitchFile), "0\n");
}

TEST_F(KernelSetting, ThatIsMissingIsAFailureAndIsNotMade) {
  WriteFile("/proc/sys/7/8/2", "0\n");
  EXPECT_EQ(WriteKernelSetting(kSwitch, 1), ESH_ERR_FAIL);
  EXPECT_EQ(access(kSwitchFile, F_OK), -1);
  EXPECT_EQ(ReadFile("/proc/sys/7/8/2"), "0\n");
}

}  // namespace
