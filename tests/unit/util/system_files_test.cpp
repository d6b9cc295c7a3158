#include <unistd.h>

#include <utility>

#include "tests/support/private_root.h"
#include "util/kernel_setting.h"
#include "util/result.h"

namespace {

constexpr int kSwitch[] = {7, 8, 1};
constexpr char kSwitchFile[] = "/proc/sys/7/8/1";

struct SystemFiles : PrivateRootTest {};

TEST_F(SystemFiles, AKernelSettingIsWrittenAsTextButNotMade) {
  EXPECT_EQ(WriteKernelSetting(kSwitch, 1), ESH_ERR_FAIL);
  WriteFile("/proc/sys/7/8/2", "");
  EXPECT_EQ(WriteKernelSetting(kSwitch, 1), ESH_ERR_FAIL);
  EXPECT_NE(access(kSwitchFile, F_OK), 0);
  WriteFile(kSwitchFile, "");
  EXPECT_EQ(WriteKernelSetting(kSwitch, 1), kSuccess);
  EXPECT_EQ(ReadFile(kSwitchFile), "1\n");
}

TEST_F(SystemFiles, AKernelTextLosesItsLineEnd) {
  char absent[] = "stale";
  EXPECT_EQ(ReadKernelText(kSwitch, sizeof(absent), absent), ESH_ERR_FAIL);
  EXPECT_STREQ(absent, "");
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"a\n", "a"}, {"a\n\n", "a\n"}, {"ab", "ab"}, {"", ""}, {"abcd", "abc"}};
  for (const auto& [file, text] : kCases) {
    WriteFile(kSwitchFile, file);
    char found[4];
    EXPECT_EQ(ReadKernelText(kSwitch, sizeof(found), found), kSuccess);
    EXPECT_STREQ(found, text);
  }
}

}  // namespace
