#include "fs/listing.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "shell/command/parameter.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

namespace fs = std::filesystem;

/// One medium with a directory; the working directory is the medium's root.
struct DirTest : PrivateRootTest {
  void SetUp() override {
    setenv("TZ", "UTC0", 1);
    AddMedium("flash:");
    fs::create_directory("/mnt/flash:/logs");
    fs::current_path("/mnt/flash:");
  }

  /// Makes an entry of the working directory, as of 2 January 2024: a directory when its name ends in "/".
  static void Make(const std::string& name) {
    if (name.ends_with('/'))
      fs::create_directory(name);
    else
      WriteFile(name, "12345");
    constexpr timespec kTimes[2] = {{1704153845, 0}, {1704153845, 0}};
    EXPECT_EQ(chmod(name.c_str(), 0644), 0) << name;
    EXPECT_EQ(utimensat(AT_FDCWD, name.c_str(), kTimes, 0), 0) << name;
  }

  /// What a command prints, less the space line, which it must end with.
  static std::string OutputOf(std::uint32_t (*command)()) {
    ScriptedStdio stdio;
    (void)command();
    const std::string output = stdio.TakeOutput();
    EXPECT_TRUE(output.ends_with(" KB free)\r\n")) << output;
    return output.substr(0, output.rfind("\r\n", output.find(" KB total (")));
  }
  static std::string Dir(const std::string& name, bool all = false) {
    (void)ESH_RecordSourceFile(name.c_str());
    return OutputOf(all ? ESH_ProcDirAllFile : ESH_ProcDirFile);
  }
};

TEST_F(DirTest, ListsWhatIsNamedThenTheSpace) {
  Make("logs/z.a");
  Make("logs/.a");
  Make("logs/..b/");
  fs::create_symlink("gone", "logs/link");  // has a number, but no line
  fs::permissions("logs/.a", fs::perms::owner_read);
  const std::string heading = "Directory of flash:/logs\r\n";
  const std::string plain = heading + "     1      -rw-           5  Jan 02 2024 00:04:05     z.a\r\n";
  const std::string all = plain +
                          "     2      drwh           -  Jan 02 2024 00:04:05     ..b\r\n"
                          "     3      -r-h           5  Jan 02 2024 00:04:05     .a\r\n";
  for (const char* name : {"logs", "logs/", "flash:/logs", "./logs/."}) EXPECT_EQ(Dir(name), plain) << name;
  EXPECT_EQ(Dir("logs", true), all);
  setenv("TZ", "EST5", 1);
  for (const char* name : {"logs/.a", "flash:/logs/.a"})
    EXPECT_EQ(Dir(name), heading + "     0      -r-h           5  Jan 01 2024 19:04:05     .a\r\n") << name;
  setenv("TZ", "UTC0", 1);
  fs::current_path("logs");
  EXPECT_EQ(OutputOf(ESH_ProcDir), plain);
  EXPECT_EQ(OutputOf(ESH_ProcDirAll), all);
  EXPECT_EQ(fs::current_path(), "/mnt/flash:/logs");
  for (const char* shown : {"link", "z.a"}) fs::remove(shown);
  EXPECT_EQ(OutputOf(ESH_ProcDir), "The directory is empty.\r\n") << "only hidden entries";
}

TEST_F(DirTest, PrefersTheEntryThatIsSpelledAsTyped) {
  for (const std::string name : {"FILE", "file"}) Make("logs/" + name);
  for (const std::string name : {"FILE", "file"}) EXPECT_TRUE(Dir("logs/" + name).ends_with(" " + name + "\r\n"));
}

}  // namespace
