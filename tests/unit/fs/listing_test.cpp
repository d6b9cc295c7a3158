#include "fs/listing.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>

#include "shell/command/parameter.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

namespace fs = std::filesystem;

constexpr char kIsEmpty[] = "The directory is empty.\r\n";

/// One medium with a directory; the working directory is the medium's root.
struct DirTest : PrivateRootTest {
  void SetUp() override {
    setenv("TZ", "UTC0", 1);
    unsetenv("SYSPATH");
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
  Make("empty/");
  fs::permissions("logs/.a", fs::perms::owner_read);
  const std::string heading = "Directory of flash:/logs\r\n";
  const std::string plain = heading + "     0      -rw-           5  Jan 02 2024 00:04:05     z.a\r\n";
  const std::string all = plain +
                          "     1      drwh           -  Jan 02 2024 00:04:05     ..b\r\n"
                          "     2      -r-h           5  Jan 02 2024 00:04:05     .a\r\n";
  for (const char* name : {"logs", "logs/", "flash:/logs", "./logs/.", "logs/z.a", "flash:/logs/z.a"})
    EXPECT_EQ(Dir(name), plain) << name;
  EXPECT_EQ(Dir("logs", true), all);
  EXPECT_EQ(Dir("logs/.a"), heading + "     0      -r-h           5  Jan 02 2024 00:04:05     .a\r\n");
  EXPECT_EQ(Dir("flash:/empty"), kIsEmpty);
  EXPECT_EQ(Dir("flash:/empty", true), kIsEmpty);
  fs::current_path("logs");
  EXPECT_EQ(OutputOf(ESH_ProcDir), plain);
  EXPECT_EQ(OutputOf(ESH_ProcDirAll), all);
  EXPECT_EQ(fs::current_path(), "/mnt/flash:/logs");
  fs::remove("z.a");
  EXPECT_EQ(OutputOf(ESH_ProcDir), kIsEmpty) << "only hidden entries";
}

TEST_F(DirTest, PrefersTheEntryThatIsSpelledAsTyped) {
  for (const auto& [first, second] : {std::pair("FILE", "file"), {"file", "FILE"}}) {
    Make("d/");
    for (const std::string name : {first, second}) Make("d/" + name);
    for (const std::string name : {first, second})
      EXPECT_TRUE(Dir("d/" + name).ends_with(" " + name + "\r\n")) << first << " was made first";
    fs::remove_all("d");
  }
}

}  // namespace
