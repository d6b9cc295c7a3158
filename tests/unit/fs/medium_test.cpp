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
  struct DeviceCase {
    std::string name;
    int present;
  };
  const DeviceCase cases[] = {
      {"flash:", 1}, {"flash:/a/b", 1}, {"cfa0:", 0}, {"usba0:", 1}, {"a:", 0},     {"b:", 0},
      {"flash", 0},  {"", 0},           {":", 0},     {"gone:", 0},  {"FLASH:", 0}, {std::string(300, 'x') + ":", 0},
  };
  for (const DeviceCase& c : cases) {
    EXPECT_EQ(ESH_CheckDevice(c.name.c_str()), c.present) << c.name;
  }
}

TEST_F(MediumTest, OnlyTheFirstUnitOfAKindHoldsPackages) {
  for (const char* device : {"flash:", "cfa0:", "usba0:", "usba1:", "usba9:", "usba10:", "usba00:", "usba100:", "0:"}) {
    AddMedium(device);
  }
  struct PackageCase {
    const char* name;
    int holds;
  };
  constexpr PackageCase kCases[] = {
      {"flash:", 1},   {"flash:/a1.bin", 1}, {"cfa0:", 1},   {"usba0:", 1},   {"/mnt/usba0:/x.bin", 1}, {"usba1:", 0},
      {"usba9:/x", 0}, {"usba10:", 0},       {"usba00:", 0}, {"usba100:", 0}, {"/mnt/usba1:", 0},       {"0:", 1},
      {"cfb0:", 0},    {"a.bin", 0},
  };
  for (const PackageCase& c : kCases) {
    EXPECT_EQ(ESH_IsDeviceForPkgm(c.name), c.holds) << c.name;
  }
}

TEST_F(MediumTest, GetsASlotLinkWhenItIsADirectory) {
  AddMedium("flash:");
  fs::create_directory("/mnt/cfa0:");
  fs::create_directory("/mnt/.hidden");
  fs::create_symlink("/mnt/cfa0:", "/mnt/link:");
  WriteFile("/mnt/plain", "");
  EXPECT_EQ(IsDirPath("cfa0:"), 1);
  EXPECT_EQ(IsDirPath("link:"), 0) << "a link to a directory is none";
  EXPECT_EQ(IsDirPath("plain"), 0);
  EXPECT_EQ(IsDirPath("gone"), 0);
  LinkMedia();
  LinkMedia();  // what is there stays
  EXPECT_EQ(fs::read_symlink("/mnt/slot0#cfa0:"), "/mnt/cfa0:");
  EXPECT_EQ(fs::read_symlink("/mnt/slot0#flash:"), "/mnt/flash:");
  EXPECT_EQ(fs::read_symlink("/mnt/slot0#.hidden"), "/mnt/.hidden");
  EXPECT_EQ(std::distance(fs::directory_iterator("/mnt"), {}), 5 + 3);
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
