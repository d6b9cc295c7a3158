#include "fs/medium.h"

#include <unistd.h>

#include <filesystem>
#include <string>
#include <tuple>
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
  fs::create_symlink("/mnt/flash:", "/mnt/slot0#");
  for (const char* present : {"flash:", "flash:/a/b", "usba0:"}) EXPECT_EQ(ESH_CheckDevice(present), 1) << present;
  for (const char* absent : {"cfa0:", "a:", "b:", "flash", "", ":", "gone:", "FLASH:"})
    EXPECT_EQ(ESH_CheckDevice(absent), 0) << absent;
}

TEST_F(MediumTest, OnlyTheFirstUnitOfAKindHoldsPackages) {
  for (const char* device : {"flash:", "usba0:", "usba1:", "usba9:", "usba10:", "usba00:", "usba100:", "0:", "10:"})
    AddMedium(device);
  for (const char* first : {"flash:", "flash:/a1.bin", "/mnt/usba0:/x.bin", "0:"})
    EXPECT_EQ(ESH_IsDeviceForPkgm(first), 1) << first;
  for (const char* other :
       {"usba1:", "usba9:/x", "usba10:", "usba00:", "usba100:", "/mnt/usba1:", "10:", "cfb0:", "a.bin"})
    EXPECT_EQ(ESH_IsDeviceForPkgm(other), 0) << other;
}

TEST_F(MediumTest, FirstOfItsKindBecomesTheWorkingDirectory) {
  const std::tuple<const char*, std::vector<std::string>, const char*> cases[] = {
      {"none", {"sd:", "other"}, "/tmp"},
      {"flash before the others", {"usba0:", "cfa0:", "flash:"}, "/mnt/flash:"},
      {"a card before a disk", {"usba0:", "cfa0:"}, "/mnt/cfa0:"},
      {"only the first match counts", {"flash", "flash:", "usba0:"}, "/mnt/usba0:"},
      {"sorted by bytes", {"flash:", "flash1:"}, "/mnt/flash1:"},
      {"a slot mark", {"flash0#:", "flash1:", "usba0:"}, "/mnt/usba0:"},
  };
  for (const auto& [why, directories, chosen] : cases) {
    ASSERT_EQ(EnterPrivateRoot(), "");
    for (const std::string& directory : directories) fs::create_directory("/mnt/" + directory);
    ASSERT_EQ(chdir("/tmp"), 0);
    (void)ESH_SetPwd();
    EXPECT_EQ(fs::current_path(), chosen) << why;
  }
  fs::create_symlink("/tmp", "/mnt/cfa0:");
  (void)ESH_SetPwd();
  EXPECT_EQ(fs::current_path(), "/mnt/usba0:") << "a link is no medium";
}

}  // namespace
