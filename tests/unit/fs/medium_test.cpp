#include "fs/medium.h"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "fs/working_directory.h"
#include "tests/support/private_root.h"

namespace {

namespace fs = std::filesystem;

struct MediumTest : PrivateRootTest {};

TEST_F(MediumTest, IsPresentWhileItsSlotLinkIsALink) {
  AddMedium("flash:");
  fs::create_directory("/mnt/cfa0:");                      // mounted after the start
  fs::create_symlink("/mnt/usba0:", "/mnt/slot0#usba0:");  // taken out
  fs::create_directory("/mnt/slot0#a:");
  WriteFile("/mnt/slot0#b:", "");
  for (const char* present : {"flash:", "flash:/a/b", "usba0:"}) {
    EXPECT_EQ(ESH_CheckDevice(present), 1) << present;
  }
  const std::string too_long = std::string(255, 'x') + ":";
  for (const char* absent : {"cfa0:", "a:", "b:", "flash", "", ":", "gone:", "FLASH:", too_long.c_str()}) {
    EXPECT_EQ(ESH_CheckDevice(absent), 0) << absent;
  }
}

TEST_F(MediumTest, OnlyTheFirstUnitOfAKindHoldsPackages) {
  for (const char* device : {"flash:", "cfa0:", "usba0:", "usba1:", "usba9:", "usba10:", "usba00:", "usba100:", "0:"}) {
    AddMedium(device);
  }
  for (const char* first : {"flash:", "flash:/a1.bin", "cfa0:", "usba0:", "/mnt/usba0:/x.bin", "0:"}) {
    EXPECT_EQ(ESH_IsDeviceForPkgm(first), 1) << first;
  }
  for (const char* other : {"usba1:", "usba9:/x", "usba10:", "usba00:", "usba100:", "/mnt/usba1:", "cfb0:", "a.bin"}) {
    EXPECT_EQ(ESH_IsDeviceForPkgm(other), 0) << other;
  }
}

TEST_F(MediumTest, FirstOfItsKindBecomesTheWorkingDirectory) {
  struct StartCase {
    const char* why;
    std::vector<const char*> directories;
    const char* chosen;
  };
  const StartCase cases[] = {
      {"none", {"sd:", "other"}, "/tmp"},
      {"flash before the others", {"usba0:", "cfa0:", "flash:"}, "/mnt/flash:"},
      {"a card before a disk", {"usba0:", "cfa0:"}, "/mnt/cfa0:"},
      {"a disk", {"usba0:", "sd:"}, "/mnt/usba0:"},
      {"only the first match counts", {"flash", "flash:", "usba0:"}, "/mnt/usba0:"},
      {"sorted by bytes", {"flash:", "flash1:"}, "/mnt/flash1:"},
      {"a slot mark", {"flash0#:", "flash1:", "cfa0:"}, "/mnt/cfa0:"},
      {"case counts", {"FLASH:", "cfa0:"}, "/mnt/cfa0:"},
  };
  for (const StartCase& c : cases) {
    ASSERT_EQ(EnterPrivateRoot(), "");
    for (const std::string directory : c.directories) {
      fs::create_directory("/mnt/" + directory);
    }
    ASSERT_EQ(chdir("/tmp"), 0);
    (void)ESH_SetPwd();
    EXPECT_EQ(fs::current_path(), c.chosen) << c.why;
  }
  ASSERT_EQ(EnterPrivateRoot(), "");
  WriteFile("/mnt/flash:", "");
  fs::create_symlink("/tmp", "/mnt/cfa0:");
  fs::create_directory("/mnt/usba0:");
  (void)ESH_SetPwd();
  EXPECT_EQ(fs::current_path(), "/mnt/usba0:") << "neither a file nor a link is a medium";
}

}  // namespace
