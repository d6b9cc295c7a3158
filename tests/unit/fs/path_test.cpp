#include "fs/path.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "fs/dot_elimination.h"
#include "fs/name_rules.h"
#include "fs/user_file.h"
#include "fs/working_directory.h"
#include "shell/result.h"
#include "tests/support/private_root.h"

namespace {

struct NameCase {
  const char* name;
  const char* result;  // NULL: refused
};

TEST(DotElimination, StopsAtTheFloor) {
  struct DotCase {
    const char* name;
    std::uint32_t floor;
    const char* result;
  };
  constexpr DotCase kCases[] = {
      {"/a/./b/.", kRootFloor, "/a/b"},
      {"/a/b/../../c", kRootFloor, "/c"},
      {"/a/..", kRootFloor, "/"},
      {"/.", kRootFloor, "/"},
      {"/", kRootFloor, "/"},
      {"/a/.../..b", kRootFloor, "/a/.../..b"},
      {"/a/b/", kRootFloor, "/a/b"},
      {"/..", kRootFloor, nullptr},
      {"/a/../..", kRootFloor, nullptr},
      {"/a//b", kRootFloor, nullptr},
      {"/a//", kRootFloor, nullptr},
      {"//", kRootFloor, nullptr},
      {"./a", kRootFloor, nullptr},
      {"", kRootFloor, nullptr},
      {"/mnt/d:/a/..", kMediumFloor, "/mnt/d:"},
      {"/mnt/d:/..", kMediumFloor, nullptr},
      {"/mnt/d:/a/../../d:/b", kMediumFloor, nullptr},
      {"/mnt/d:/./a/b/../..", kMediumFloor, "/mnt/d:"},
      {"/mnt/..", kMediumFloor, nullptr},
  };
  for (const DotCase& c : kCases) {
    char result[64];
    EXPECT_EQ(eliminatePoint(c.name, c.floor, sizeof(result), result), c.result == nullptr ? ESH_ERR_FAIL : kSuccess)
        << c.name;
    if (c.result != nullptr) {
      EXPECT_STREQ(result, c.result);
    }
  }
}

TEST(DotElimination, HoldsAllComponentsOfTheLongestName) {
  std::string name;
  while (name.size() < 8190) {
    name += "/a";
  }
  std::string result(8192, '\0');
  EXPECT_EQ(eliminatePoint(name.c_str(), kRootFloor, result.size(), result.data()), kSuccess);
  EXPECT_STREQ(result.c_str(), name.c_str());
  name += "/a";
  EXPECT_EQ(eliminatePoint(name.c_str(), kRootFloor, result.size(), result.data()), ESH_ERR_FAIL);
}

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
      {"flash:", "/mnt/flash:"},
      {"flash:/", "/mnt/flash:"},
      {"flash:/a", "/mnt/flash:/a"},
      {"flash:/a/", "/mnt/flash:/a"},
      {"flash:/./a/.", "/mnt/flash:/a"},
      {"flash:/a/../b", "/mnt/flash:/b"},
      {"flash:/..", "/mnt"},
      {"flash:/../..", "/"},
      {"flash:/../../..", nullptr},
      {"gone:/a", "/mnt/gone:/a"},  // whether the medium is there is not asked here
      {"slot0#flash:/a", "/mnt/slot0#flash:/a"},
      {"FLASH:/a", "/mnt/FLASH:/a"},
      {"/mnt/flash:/a", "/mnt/flash:/a"},
      {"/mnt/flash:/..", "/mnt"},
      {"/mnt", "/mnt"},
      {"/tmp/x", "/tmp/x"},
      {"/", "/"},
      {"a", "/mnt/flash:/logs/a"},
      {"./a", "/mnt/flash:/logs/a"},
      {"a/b/", "/mnt/flash:/logs/a/b"},
      {".", "/mnt/flash:/logs"},
      {"..", "/mnt/flash:"},
      {"../a", "/mnt/flash:/a"},
      {"../../..", "/"},
      {"../../../..", nullptr},
      {"a b", "/mnt/flash:/logs/a b"},
      {"", nullptr},
      {"flash:a", nullptr},
      {"flash://a", nullptr},
      {"a:/b:/c", nullptr},
      {"#flash:/a", nullptr},
      {"0##flash:/a", nullptr},
      {"a#flash:/a", nullptr},
      {"0#flash:/a", "/mnt/0#flash:/a"},
      {"fl.ash:/a", nullptr},
      {"logs/flash:/a", nullptr},
      {"/flash:/a", nullptr},
      {"/mnt/x/flash:", nullptr},
      {"/mnt/:", "/mnt/:"},  // the shortest device name
  };
  for (const NameCase& c : kCases) {
    EXPECT_EQ(Full(c.name), c.result == nullptr ? "refused" : c.result) << c.name;
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
  struct TypedCase {
    const char* name;
    bool typed;
    bool with_device;
  };
  constexpr TypedCase kCases[] = {
      {"flash:", true, true},
      {"flash:/", true, true},
      {"flash:/a/..", true, true},
      {"flash:/..", false, false},
      {"flash:/a/../..", false, false},
      {"flash:/../flash/x", false, false},
      {"flash:/../cfa0/..", false, false},
      {"a", true, false},
      {".", true, false},
      {"..", true, false},
      {"../..", false, false},
      {"../../flash", false, false},
      {"/mnt/flash:/a", false, false},
      {"/a", false, false},
      {"", false, false},
      {"flash:/a*", false, false},
      {"slot0#flash:/a", true, true},
  };
  for (const TypedCase& c : kCases) {
    EXPECT_EQ(ESH_FS_IsValidEshInputFileName(c.name) == kSuccess, c.typed) << c.name;
    EXPECT_EQ(ESH_FS_IsValidUserFileName(c.name) == kSuccess, c.with_device) << c.name;
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
      {"/mnt/flash:/a", "flash:/a"},
      {"flash:/a/../b", "flash:/b"},
      {"a", "flash:/logs/a"},
      {"/mnt/flash:", "flash:"},
      {"/tmp/x", nullptr},
      {"/mnt", nullptr},
      {"", nullptr},
  };
  for (const NameCase& c : kCases) {
    char name[64];
    EXPECT_EQ(ESH_FS_GetUserFileName(c.name, sizeof(name), name), c.result == nullptr ? ESH_ERR_FAIL : kSuccess)
        << c.name;
    if (c.result != nullptr) {
      EXPECT_STREQ(name, c.result);
    }
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
  struct CheckCase {
    const char* typed;
    int place;
    int manipulable;
  };
  constexpr CheckCase kCases[] = {
      {"flash:", 1, 0},
      {"flash:/", 1, 0},
      {"flash:/a/..", 1, 0},
      {"flash:/x", 1, 1},
      {"flash:/x/", 1, 1},
      {"x", 1, 1},
      {".", 1, 1},
      {"..", 1, 0},
      {".hidden", 1, 1},
      {"\"a b\"", 1, 1},
      {"\"flash:/a b\"", 1, 1},
      {"\"ab\"", 0, 0},
      {"a b", 0, 0},
      {"gone:/x", 0, 0},
      {"/mnt/flash:/x", 0, 0},
      {"flash:/..", 0, 0},
      {"../..", 0, 0},
      {"slot0#flash:/x", 0, 0},
      {"FLASH:/x", 0, 0},
      {"", 0, 0},
  };
  for (const CheckCase& c : kCases) {
    EXPECT_EQ(ESH_FS_CheckInvalidFileDir(c.typed), c.place) << c.typed;
    EXPECT_EQ(ESH_FS_CheckUserManipulatedFile(c.typed), c.manipulable) << c.typed;
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
