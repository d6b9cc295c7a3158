#include "fs/dir.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "shell/parameter.h"
#include "shell/result.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"
#include "util/unique_handle.h"

namespace {

namespace fs = std::filesystem;

constexpr char kDoesNotExist[] = "The file or directory doesn't exist.\r\n";
constexpr char kIsEmpty[] = "The directory is empty.\r\n";

/// One medium; the working directory is its root. Every entry was changed on 2 January 2024.
struct DirTest : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    setenv("TZ", "UTC0", 1);
    unsetenv("SYSPATH");
    AddMedium("flash:");
    ASSERT_EQ(chdir("/mnt/flash:"), 0);
  }

  /// Makes an entry of the working directory: a directory when its name ends in "/".
  static void Make(const std::string& name, off_t size = 5, mode_t mode = 0644, std::time_t changed = 1704153845) {
    if (name.ends_with('/')) {
      fs::create_directories(name);
    } else {
      const UniqueFd file(open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
      EXPECT_EQ(ftruncate(file.Get(), size), 0) << name;
    }
    const timespec times[2] = {{changed, 0}, {changed, 0}};
    EXPECT_EQ(chmod(name.c_str(), mode), 0) << name;
    EXPECT_EQ(utimensat(AT_FDCWD, name.c_str(), times, 0), 0) << name;
  }

  template <typename Command>
  static std::string OutputOf(Command command) {
    ScriptedStdio stdio;
    command();
    return stdio.TakeOutput();
  }

  static std::string ListingOf(const std::string& full, bool all = false) {
    return OutputOf([&] { EXPECT_EQ(ESH_ListFileInfoInDir(full.c_str(), all), kSuccess); });
  }

  /// What "dir <name>" prints, less the space line, which it must end with.
  static std::string Dir(const std::string& name, bool all = false) {
    const std::string output = OutputOf([&] {
      (void)ESH_RecordSourceFile(name.c_str());
      (void)(all ? ESH_ProcDirAllFile() : ESH_ProcDirFile());
    });
    const std::size_t space = output.rfind("\r\n", output.find(" KB total ("));
    EXPECT_TRUE(output.ends_with(" KB free)\r\n")) << output;
    return output.substr(0, space);
  }
};

TEST_F(DirTest, ShowsLocalTimeAndDatesBeyond2100) {
  setenv("TZ", "UTC-2", 1);
  Make("a", 0, 0644, 4102444799);
  EXPECT_EQ(ListingOf("/mnt/flash:"),
            "Directory of flash:\r\n"
            "     0      -rw-           0  Jan 01 2100 01:59:59     a\r\n");
}

TEST_F(DirTest, ShowsHiddenEntriesBehindAllOthersAndOnlyWhenAsked) {
  Make("logs/");
  Make("logs/z");
  Make("logs/.a");
  Make("logs/..b/");
  EXPECT_EQ(ListingOf("/mnt/flash:/logs"),
            "Directory of flash:/logs\r\n"
            "     0      -rw-           5  Jan 02 2024 00:04:05     z\r\n");
  EXPECT_EQ(ListingOf("/mnt/flash:/logs", true),
            "Directory of flash:/logs\r\n"
            "     0      -rw-           5  Jan 02 2024 00:04:05     z\r\n"
            "     1      drwh           -  Jan 02 2024 00:04:05     ..b\r\n"
            "     2      -rwh           5  Jan 02 2024 00:04:05     .a\r\n");
  fs::remove("logs/z");
  EXPECT_EQ(ListingOf("/mnt/flash:/logs"), kIsEmpty);
  EXPECT_EQ(ListingOf("/mnt/flash:/logs", true),
            "Directory of flash:/logs\r\n"
            "     0      drwh           -  Jan 02 2024 00:04:05     ..b\r\n"
            "     1      -rwh           5  Jan 02 2024 00:04:05     .a\r\n");
}

TEST_F(DirTest, APlaceWithoutADisplayNameShowsNothing) {
  WriteFile("/tmp/a", "");
  EXPECT_EQ(ListingOf("/tmp"), kIsEmpty);
  EXPECT_EQ(fs::current_path(), "/mnt/flash:");
}

TEST_F(DirTest, ListsWhatIsNamedThenTheSpace) {
  Make("logs/");
  Make("logs/a.log");
  Make("logs/.h.log");
  Make("empty/");
  const std::string one =
      "Directory of flash:/logs\r\n     0      -rw-           5  Jan 02 2024 00:04:05     a.log\r\n";
  const std::string hidden =
      "Directory of flash:/logs\r\n     0      -rwh           5  Jan 02 2024 00:04:05     .h.log\r\n";
  for (const char* name : {"logs", "logs/", "flash:/logs", "./logs/.", "logs/a.log", "flash:/logs/a.log"}) {
    EXPECT_EQ(Dir(name), one) << name;
  }
  EXPECT_EQ(Dir("logs/.h.log"), hidden);
  EXPECT_EQ(Dir("flash:/empty"), kIsEmpty);
  EXPECT_EQ(Dir("flash:/empty", true), kIsEmpty);
  EXPECT_EQ(Dir("logs", true), one + "     1" + hidden.substr(hidden.find("     0") + 6));
  ASSERT_EQ(chdir("logs"), 0);
  EXPECT_TRUE(OutputOf(ESH_ProcDir).starts_with(one + "\r\n"));
  EXPECT_TRUE(OutputOf(ESH_ProcDirAll).starts_with(Dir(".", true) + "\r\n"));
  EXPECT_EQ(fs::current_path(), "/mnt/flash:/logs");
}

TEST_F(DirTest, PrefersTheEntryThatIsSpelledAsTyped) {
  for (const bool upper_first : {false, true}) {
    Make("d/");
    Make(upper_first ? "d/FILE" : "d/file", upper_first ? 1 : 2);
    Make(upper_first ? "d/file" : "d/FILE", upper_first ? 2 : 1);
    EXPECT_TRUE(Dir("d/FILE").ends_with(" 1  Jan 02 2024 00:04:05     FILE\r\n")) << upper_first;
    EXPECT_TRUE(Dir("d/file").ends_with(" 2  Jan 02 2024 00:04:05     file\r\n")) << upper_first;
    fs::remove_all("d");
  }
}

TEST_F(DirTest, SaysThatThereIsNoSuchThing) {
  for (const char* name : {"gone", "flash:/gone", "gone:/", "flash:/..", "/mnt/flash:", "..", "flash:/a*"}) {
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(ESH_DirFileInDirectory(name, false), ESH_ERR_FAIL); }), kDoesNotExist) << name;
  }
}

}  // namespace
