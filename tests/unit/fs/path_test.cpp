#include "fs/path.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "fs/name_rules.h"
#include "fs/user_file.h"
#include "fs/working_directory.h"
#include "shell/result.h"
#include "tests/support/private_root.h"

namespace {

struct NameCase {
  const char* name;
  const char* result;
};

/// The working directory is flash:/logs.
struct PathTest : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    unsetenv("SYSPATH");
    AddMedium("flash:");
    MoveTo("/mnt/flash:/logs");
  }

  static void MoveTo(const std::string& directory) {
    std::filesystem::create_directories(directory);
    ASSERT_EQ(chdir(directory.c_str()), 0);
  }

  /// The full name, or "refused".
  static std::string Full(const std::string& name, std::size_t room = kNameRoom) {
    std::string full(room, '\0');
    const bool done = ESH_FS_GetFullFileName(name.c_str(), room, full.data()) == kSuccess;
    return done ? full.c_str() : "refused";
  }
};

TEST_F(PathTest, FullNameOfATypedOne) {
  constexpr NameCase kCases[] = {
      {"flash:/./a/.", "/mnt/flash:/a"},
      {"flash:/a/../b/", "/mnt/flash:/b"},
      {"slot0#flash:/a", "/mnt/slot0#flash:/a"},
      {"0#flash:/a", "/mnt/0#flash:/a"},
      {"/mnt/flash:/a", "/mnt/flash:/a"},
      {"/mnt/:", "/mnt/:"},         // the shortest device name
      {"GONE:/a", "/mnt/GONE:/a"},  // whether the medium is there is not asked here
      {"a/b c/", "/mnt/flash:/logs/a/b c"},
      {"./a", "/mnt/flash:/logs/a"},
      {"../a", "/mnt/flash:/a"},
      {".", "/mnt/flash:/logs"},
      {"/tmp/x", "/tmp/x"},
  };
  for (const NameCase& c : kCases) {
    EXPECT_EQ(Full(c.name), c.result) << c.name;
  }
  for (const char* medium : {"flash:", "flash:/", "..", "flash:/a/.."}) {
    EXPECT_EQ(Full(medium), "/mnt/flash:") << medium;
  }
  for (const char* mount_point : {"flash:/..", "/mnt/flash:/..", "../..", "/mnt"}) {
    EXPECT_EQ(Full(mount_point), "/mnt") << mount_point;
  }
  for (const char* root : {"flash:/../..", "../../..", "/"}) {
    EXPECT_EQ(Full(root), "/") << root;
  }
  for (const char* refused :
       {"", "flash:a", "flash://a", "flash:/../../..", "../../../..", "a:/b:/c", "#flash:/a", "0##flash:/a",
        "a#flash:/a", "fl.ash:/a", "logs/flash:/a", "/flash:/a", "/mnt/x/flash:"}) {
    EXPECT_EQ(Full(refused), "refused") << refused;
  }
  EXPECT_NE(ESH_FS_GetFullFileName(nullptr, 0, nullptr), kSuccess);
}

TEST_F(PathTest, DeviceOfTheWorkingDirectoryIsCheckedToo) {
  MoveTo("/mnt/a#b:/x");
  EXPECT_EQ(Full("a"), "refused");
  EXPECT_EQ(Full("../../c"), "/mnt/c") << "it has left the device";
  MoveTo("/tmp");
  EXPECT_EQ(Full("a"), "/tmp/a");
}

TEST_F(PathTest, DeviceNamesHaveAtMost255Characters) {
  const std::string device = std::string(254, 'd') + ":";
  EXPECT_EQ(Full(device + "/a"), "/mnt/" + device + "/a");
  EXPECT_EQ(Full("d" + device + "/a"), "refused");
}

TEST_F(PathTest, FullNameMustFitAFileNameAndTheBuffer) {
  std::string name = "flash:";
  while (name.size() < 4090) {
    name += "/a";
  }
  ASSERT_EQ(name.size(), 4090U);
  EXPECT_EQ(Full(name), "/mnt/" + name);
  EXPECT_EQ(Full(name + "a"), "refused");
  EXPECT_EQ(Full(name + "/../b"), "/mnt/" + name.substr(0, 4089) + "b") << "only the result counts";

  EXPECT_EQ(Full("flash:/abc", 16), "/mnt/flash:/abc");
  EXPECT_EQ(Full("flash:/abc", 15), "refused");
}

TEST_F(PathTest, TypedNamesStayInsideTheirMedium) {
  for (const char* name : {"flash:", "flash:/", "flash:/a/..", "slot0#flash:/a"}) {
    EXPECT_EQ(ESH_FS_IsValidEshInputFileName(name), kSuccess) << name;
    EXPECT_EQ(ESH_FS_IsValidUserFileName(name), kSuccess) << name;
  }
  for (const char* without_device : {"a", ".", ".."}) {
    EXPECT_EQ(ESH_FS_IsValidEshInputFileName(without_device), kSuccess) << without_device;
    EXPECT_NE(ESH_FS_IsValidUserFileName(without_device), kSuccess) << without_device;
  }
  for (const char* name : {"flash:/..", "flash:/a/../..", "flash:/../flash/x", "flash:/../cfa0/..", "../..",
                           "../../flash", "/mnt/flash:/a", "/a", "", "flash:/a*"}) {
    EXPECT_NE(ESH_FS_IsValidEshInputFileName(name), kSuccess) << name;
    EXPECT_NE(ESH_FS_IsValidUserFileName(name), kSuccess) << name;
  }
  MoveTo("/mnt/flash:");
  EXPECT_NE(ESH_FS_IsValidEshInputFileName(".."), kSuccess);
  EXPECT_EQ(ESH_FS_IsValidFullFileName("/mnt/flash:/a"), kSuccess);
  EXPECT_NE(ESH_FS_IsValidFullFileName("flash:/a"), kSuccess);
}

TEST_F(PathTest, AFileIsNotNamedWithASlashBehind) {
  char full[kNameRoom];
  EXPECT_EQ(ESH_InputName2FullValidName("flash:/a/", 0, sizeof(full), full), kSuccess);
  EXPECT_STREQ(full, "/mnt/flash:/a");
  EXPECT_NE(ESH_InputName2FullValidName("flash:/a/", 1, sizeof(full), full), kSuccess);
  EXPECT_EQ(ESH_InputName2FullValidName("flash:/a", 1, sizeof(full), full), kSuccess);
  EXPECT_NE(ESH_InputName2FullValidName("/mnt/flash:/a", 0, sizeof(full), full), kSuccess);
  EXPECT_EQ(ESH_IsExpectFile(""), 1);
  EXPECT_EQ(ESH_IsExpectFile("/"), 0);
}

TEST_F(PathTest, DisplayNameIsTheFullOneWithoutTheMountPoint) {
  constexpr NameCase kCases[] = {
      {"/mnt/flash:/a", "flash:/a"}, {"flash:/a/../b", "flash:/b"}, {"a", "flash:/logs/a"}, {"/mnt/flash:", "flash:"}};
  for (const NameCase& c : kCases) {
    char display[64];
    EXPECT_EQ(ESH_FS_GetUserFileName(c.name, sizeof(display), display), kSuccess) << c.name;
    EXPECT_STREQ(display, c.result);
  }
  for (const char* refused : {"/tmp/x", "/mnt", ""}) {
    char display[64];
    EXPECT_EQ(ESH_FS_GetUserFileName(refused, sizeof(display), display), ESH_ERR_FAIL) << refused;
  }
  char name[9];
  EXPECT_EQ(ESH_FS_GetUserFileName("flash:/a", 9, name), kSuccess);
  EXPECT_EQ(ESH_FS_GetUserFileName("flash:/a", 8, name), kErrNameDoesNotFit);
  EXPECT_EQ(ESH_FS_GetUserFileNameByFullName("/mnt/flash:/a", 9, name), kSuccess);
  EXPECT_EQ(ESH_FS_GetUserFileNameByFullName("flash:/a", 9, name), ESH_ERR_FAIL);
  EXPECT_EQ(ESH_FS_GetUserFileNameByFullName(nullptr, 9, name), ESH_ERR_FAIL);
}

TEST_F(PathTest, SplitsIntoDirectoryAndFileInsideTheMedium) {
  struct SplitCase {
    std::string name;
    const char* directory;
    std::string file;
  };
  const std::string longest(255, 'f');
  const SplitCase cases[] = {
      {"flash:", "", ""},          {"flash:/", "", ""},          {"flash:/a", "", "a"},
      {"flash:/a/", "a", ""},      {"flash:/a/b/c", "a/b", "c"}, {"flash:/a/b/c/", "a/b/c", ""},
      {"flash:/a/..", "", ""},     {"a", "logs", "a"},           {"..", "", ""},
      {"/tmp/a/b", "/tmp/a", "b"}, {"/tmp", "/", "tmp"},         {"flash:/" + longest, "", longest},
  };
  for (const SplitCase& c : cases) {
    char directory[kNameRoom];
    char file[kComponentRoom];
    EXPECT_EQ(ESH_FS_AnalyseFileName(c.name.c_str(), directory, file), kSuccess) << c.name;
    EXPECT_STREQ(directory, c.directory) << c.name;
    EXPECT_EQ(file, c.file) << c.name;
  }
}

TEST_F(PathTest, CommandsTakeNamesOnPresentMediaOnly) {
  for (const char* name : {"flash:/x", "flash:/x/", "x", ".", ".hidden", "\"a b\"", "\"flash:/a b\""}) {
    EXPECT_EQ(ESH_FS_CheckInvalidFileDir(name), 1) << name;
    EXPECT_EQ(ESH_FS_CheckUserManipulatedFile(name), 1) << name;
  }
  for (const char* root : {"flash:", "flash:/", "flash:/a/..", ".."}) {
    EXPECT_EQ(ESH_FS_CheckInvalidFileDir(root), 1) << root;
    EXPECT_EQ(ESH_FS_CheckUserManipulatedFile(root), 0) << root;
  }
  for (const char* name :
       {"\"ab\"", "a b", "gone:/x", "/mnt/flash:/x", "flash:/..", "../..", "slot0#flash:/x", "FLASH:/x", ""}) {
    EXPECT_EQ(ESH_FS_CheckInvalidFileDir(name), 0) << name;
    EXPECT_EQ(ESH_FS_CheckUserManipulatedFile(name), 0) << name;
  }
  EXPECT_EQ(ESH_FS_CheckInvalidFileDir(std::string(511, 'x').c_str()), 0) << "a component of 511 characters";
  MoveTo("/tmp");
  EXPECT_EQ(ESH_FS_CheckInvalidFileDir("x"), 0) << "no medium at all";
}

TEST_F(PathTest, ARemovedWorkingDirectoryFailsRelativeNamesUnlessSyspathStandsIn) {
  std::filesystem::remove("/mnt/flash:/logs");
  char directory[kNameRoom];
  EXPECT_NE(ESH_GetCwd(sizeof(directory), directory), kSuccess);
  EXPECT_EQ(Full("a"), "refused");
  EXPECT_NE(ESH_FS_IsValidEshInputFileName("a"), kSuccess);
  EXPECT_EQ(Full("flash:/a"), "/mnt/flash:/a");
  EXPECT_EQ(ESH_FS_IsValidEshInputFileName("flash:/a"), kSuccess);

  setenv("SYSPATH", "/mnt/flash:/stand", 1);
  EXPECT_EQ(ESH_GetCwd(sizeof(directory), directory), kSuccess);
  EXPECT_STREQ(directory, "/mnt/flash:/stand");
  EXPECT_EQ(Full("a"), "/mnt/flash:/stand/a");
  EXPECT_EQ(ESH_GetCwd(6, directory), kSuccess);
  EXPECT_STREQ(directory, "/mnt/") << "cut to the buffer";
  unsetenv("SYSPATH");
}

}  // namespace
