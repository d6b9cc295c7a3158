#include <utility>

#include "tests/support/private_root.h"
#include "util/kernel_setting.h"
#include "util/result.h"

namespace {

constexpr int kSwitch[] = {7, 8, 1};

using SystemFiles = PrivateRootTest;

TEST_F(SystemFiles, AKernelTextLosesItsLineEnd) {
  char absent[] = "stale";
  EXPECT_EQ(ReadKernelText(kSwitch, sizeof(absent), absent), ESH_ERR_FAIL);
  EXPECT_STREQ(absent, "");
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"a\n", "a"}, {"a\n\n", "a\n"}, {"ab", "ab"}, {"", ""}, {"abcd", "abc"}};
  for (const auto& [file, text] : kCases) {
    WriteFile("/proc/sys/7/8/1", file);
    char found[4];
    EXPECT_EQ(ReadKernelText(kSwitch, sizeof(found), found), kSuccess);
    EXPECT_STREQ(found, text);
  }
}

}  // namespace
