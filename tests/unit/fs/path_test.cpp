#include "fs/path.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "fs/names/name_rules.h"
#include "fs/user_file.h"
#include "fs/working_directory.h"
#include "tests/support/private_root.h"
#include "util/result.h"

namespace {

constexpr char kRefused[] = "refused";

/// How far a typed name gets: out of its medium (or it is no name), to a medium that is not there, to a medium itself,
/// which is no file to work with, or to an entry.
enum Reach { kNowhere, kAbsent, kRoot, kEntry };

Reach ReachOf(const char* name) {
  const bool is_legal = ESH_FS_IsValidEshInputFileName(name) == kSuccess;
  const bool is_present = ESH_FS_CheckInvalidFileDir(name) == 1;
  const bool is_entry = ESH_FS_CheckUserManipulatedFile(name) == 1;
  EXPECT_TRUE(is_entry <= is_present && is_present <= is_legal) << name;
  EXPECT_EQ(ESH_FS_IsValidUserFileName(name) == kSuccess, is_legal && std::strchr(name, ':') != nullptr) << name;
  char full[kNameRoom];
  EXPECT_EQ(ESH_InputName2FullValidName(name, 1, sizeof(full), full) == kSuccess,
            is_legal && !std::string_view(name).ends_with('/'))
      << name << " as a file's";
  return is_entry ? kEntry : is_present ? kRoot : is_legal ? kAbsent : kNowhere;
}

/// The working directory is flash:/logs.
struct PathTest : PrivateRootTest {
  void SetUp() override {
    AddMedium("flash:");
    MoveTo("/mnt/flash:/logs");
  }

  static void MoveTo(const std::string& directory) {
    std::filesystem::create_directories(directory);
    ASSERT_EQ(chdir(directory.c_str()), 0);
  }

  static std::string Full(const std::string& name, std::size_t room = kNameRoom) {
    std::string full(room, '\0');
    return ESH_FS_GetFullFileName(name.c_str(), room, full.data()) == kSuccess ? full.c_str() : kRefused;
  }
};

TEST_F(PathTest, TypedNamesStayInsideTheirMedium) {
  constexpr std::tuple<const char*, const char*, Reach> kCases[] = {
      {"flash:/./a/.", "/mnt/flash:/a", kEntry},
      {"flash:/a/../b/", "/mnt/flash:/b", kEntry},
      {"flash:/.../..b/", "/mnt/flash:/.../..b", kEntry},
      {"../.a", "/mnt/flash:/.a", kEntry},
      {".", "/mnt/flash:/logs", kEntry},
      {"flash:/", "/mnt/flash:", kRoot},
      {"..", "/mnt/flash:", kRoot},
      {"slot0#flash:/a", "/mnt/slot0#flash:/a", kAbsent},
      {"/mnt/flash:/a", "/mnt/flash:/a", kNowhere},  // where media are mounted is no user's business
      {"/tmp/x", "/tmp/x", kNowhere},
      {"flash:/..", "/mnt", kNowhere},
      {"flash:/../flash/x", "/mnt/flash/x", kNowhere},
      {"../../..", "/", kNowhere},
      {"flash:/../../..", kRefused, kNowhere},
  };
  for (const auto& [name, full, reach] : kCases) {
    EXPECT_EQ(Full(name), full) << name;
    EXPECT_EQ(ReachOf(name), reach) << name;
    EXPECT_EQ(ESH_FS_IsValidFullFileName(name) == kSuccess, name[0] == '/') << name;
  }
  for (const char* name : {"", "flash:a", "flash://a", "flash:/a*", "a:/b:/c", "#flash:/a", "0##flash:/a", "a#flash:/a",
                           "fl.ash:/a", "logs/flash:/a", "/flash:/a", "/mnt/x/flash:", "/mnt:"}) {
    EXPECT_EQ(Full(name), kRefused) << name;
    EXPECT_EQ(ReachOf(name), kNowhere) << name;
  }
  MoveTo("/mnt/a#b:/x");
  EXPECT_EQ(Full("a"), kRefused) << "the device of the working directory is checked too";
  EXPECT_EQ(Full("../../c"), "/mnt/c");
  MoveTo("/tmp");
  EXPECT_EQ(Full("a"), "/tmp/a");
  EXPECT_EQ(ReachOf("a"), kAbsent);
  MoveTo("/");
  EXPECT_EQ(Full("a"), kRefused) << "no component is empty";
  EXPECT_EQ(ESH_FS_CheckUserManipulatedFile("\"flash:/a b\""), 1);
  EXPECT_EQ(ESH_FS_CheckInvalidFileDir("flash:/a b"), 0);
}

TEST_F(PathTest, SplitsIntoTheDirectoryOnItsMediumAndTheLastComponent) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"flash:", "|"}, {"flash:/", "|"}, {"flash:/a", "|a"},   {"flash:/a/b/", "a/b|"},
      {"a", "logs|a"}, {"/", "/|"},      {"/tmp/x", "/tmp|x"}, {"/tmp/x/", "/tmp/x|"},
  };
  for (const auto& [name, parts] : kCases) {
    char directory[kNameRoom];
    char file[kComponentRoom];
    EXPECT_EQ(ESH_FS_AnalyseFileName(name, directory, file), kSuccess);
    EXPECT_EQ(std::string(directory) + "|" + file, parts) << name;
  }
}

TEST_F(PathTest, FullNameMustFitAFileNameAndTheBuffer) {
  std::string name = "flash:";
  while (name.size() < kMaxName - 5) name += "/a";
  const std::string device = std::string(kMaxComponent - 1, 'd') + ":";
  const std::tuple<std::string, std::size_t, std::string> cases[] = {
      {name, kNameRoom, "/mnt/" + name},
      {name + "a", kNameRoom, kRefused},
      {name + "/../b", kNameRoom, "/mnt/" + name.substr(0, name.size() - 1) + "b"},  // only the result counts
      {device + "/a", kNameRoom, "/mnt/" + device + "/a"},
      {"d" + device + "/a", kNameRoom, kRefused},
      {"flash:/abc", 16, "/mnt/flash:/abc"},
      {"flash:/abc", 15, kRefused},
  };
  for (const auto& [typed, room, full] : cases) EXPECT_EQ(Full(typed, room), full) << typed;
}

TEST_F(PathTest, DisplayNameIsTheFullOneWithoutTheMountPoint) {
  constexpr std::tuple<const char*, std::uint32_t, const char*> kCases[] = {
      {"/mnt/flash:", kSuccess, "flash:"}, {"flash:/a/../b", kSuccess, "flash:/b"},
      {"a", kSuccess, "flash:/logs/a"},    {"ab", kErrNameDoesNotFit, "flash:/logs/a"},
      {"/tmp/x", ESH_ERR_FAIL, ""},        {"/mnt", ESH_ERR_FAIL, ""},
      {"flash://a", ESH_ERR_FAIL, ""},
  };
  for (const auto& [name, result, display] : kCases) {
    char output[sizeof("flash:/logs/a")] = "stale";
    EXPECT_EQ(ESH_FS_GetUserFileName(name, sizeof(output), output), result) << name;
    EXPECT_STREQ(output, display);
  }
}

TEST_F(PathTest, ARemovedWorkingDirectoryFailsRelativeNamesUnlessSyspathStandsIn) {
  std::filesystem::remove("/mnt/flash:/logs");
  EXPECT_EQ(ReachOf("a"), kNowhere);
  EXPECT_EQ(Full("flash:/a"), "/mnt/flash:/a");
  setenv("SYSPATH", "/mnt/flash:/stand", 1);
  EXPECT_EQ(Full("a"), "/mnt/flash:/stand/a");
  char directory[6];
  EXPECT_EQ(ESH_GetCwd(sizeof(directory), directory), kSuccess);
  EXPECT_STREQ(directory, "/mnt/") << "cut to the buffer";
}

}  // namespace
