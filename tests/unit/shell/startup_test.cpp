#include "shell/startup.h"

#include <filesystem>

#include "shell/ip_stack.h"
#include "tests/support/private_root.h"

namespace {

namespace fs = std::filesystem;

struct Startup : PrivateRootTest {};

TEST_F(Startup, FindsTheAddOnAmongTheLoadedModules) {
  struct ModuleCase {
    const char* modules;
    int loaded;
  };
  constexpr ModuleCase kCases[] = {
      {"addon 16384 0 - Live 0x0\n", 1},
      {"fat 1 0\naddon 16384 0", 1},
      {"addons 16384 0\n", 0},
      {"fat 1 1 addon\n", 0},
      {"ADDON 1 0\n", 0},
      {"", 0},
  };
  EXPECT_EQ(HasLoadedKo(), 0) << "no such file";
  for (const ModuleCase& c : kCases) {
    WriteFile("/proc/modules", c.modules);
    EXPECT_EQ(HasLoadedKo(), c.loaded) << c.modules;
  }
}

TEST_F(Startup, LooksForTheIpStackAfreshAtEveryCall) {
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
  WriteFile("/lib/modules/ipstack.ko", "");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 1);
  fs::remove("/lib/modules/ipstack.ko");
  EXPECT_EQ(ESH_IsExistIpstackKo(), 0);
}

}  // namespace
