#include "shell/startup.h"

#include <cstdio>

#include "net/ip_stack.h"
#include "tests/support/private_root.h"

namespace {

struct Startup : PrivateRootTest {};

TEST_F(Startup, FindsTheAddOnAmongTheLoadedModules) {
  constexpr struct {
    const char* modules;
    int loaded;
  } kCases[] = {
      {"fat 1 0\naddon 16384 0", 1}, {"addons 16384 0\n", 0}, {"fat 1 1 addon\n", 0}, {"ADDON 1 0\n", 0}, {"", 0},
  };
  EXPECT_EQ(HasLoadedKo(), 0) << "no such file";
  for (const auto& c : kCases) {
    WriteFile("/proc/modules", c.modules);
    EXPECT_EQ(HasLoadedKo(), c.loaded) << c.modules;
  }
}

TEST_F(Startup, LooksForTheIpStackAfreshAtEveryCall) {
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
  WriteFile("/lib/modules/ipstack.ko", "");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 1);
  std::remove("/lib/modules/ipstack.ko");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
}

}  // namespace
