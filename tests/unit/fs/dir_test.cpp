#include "fs/dir.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string>

#include "fs/pwd.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "term/line_state.h"
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
  static std::string OutputOf(Command command, const char* keys = "") {
    ScriptedStdio stdio(keys);
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

TEST_F(DirTest, PrintsOneLineForEachEntry) {
  const std::string longest(255, 'x');
  Make("B");
  Make("a-dir/", 0, 0755);
  Make("big", 5'000'000'000, 0400);
  Make("first day", 0, 0200, 0);
  Make("last", 123456789012, 0000, 4102444799);
  Make("sealed/", 0, 0055);
  Make(longest);
  EXPECT_EQ(ListingOf("/mnt/flash:"),
            "Directory of flash:\r\n"
            "     0      -rw-           5  Jan 02 2024 00:04:05     B\r\n"
            "     1      drw-           -  Jan 02 2024 00:04:05     a-dir\r\n"
            "     2      -r--  5000000000  Jan 02 2024 00:04:05     big\r\n"
            "     3      --w-           0  Jan 01 1970 00:00:00     first day\r\n"
            "     4      ----123456789012  Dec 31 2099 23:59:59     last\r\n"
            "     5      d---           -  Jan 02 2024 00:04:05     sealed\r\n"
            "     6      -rw-           5  Jan 02 2024 00:04:05     " +
                longest + "\r\n");
}

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

TEST_F(DirTest, CountsAnEntryThatLeadsNowhereWithoutShowingIt) {
  Make("b");
  fs::create_symlink("gone", "a");
  fs::create_symlink("b", "c");
  EXPECT_EQ(ListingOf("/mnt/flash:"),
            "Directory of flash:\r\n"
            "     1      -rw-           5  Jan 02 2024 00:04:05     b\r\n"
            "     2      -rw-           5  Jan 02 2024 00:04:05     c\r\n");
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

TEST_F(DirTest, KnowsWhetherTheWorkingDirectoryIsStillThere) {
  EXPECT_EQ(OutputOf(ESH_ProcPwd), "flash:\r\n");
  Make("logs/");
  ASSERT_EQ(chdir("logs"), 0);
  EXPECT_EQ(OutputOf(ESH_ProcPwd), "flash:/logs\r\n");
  fs::remove("/mnt/flash:/logs");
  EXPECT_EQ(OutputOf(ESH_ProcDir), kDoesNotExist);
  EXPECT_EQ(OutputOf(ESH_ProcPwd), "CheckInvalidFileDir");
  ASSERT_EQ(chdir("/tmp"), 0);
  EXPECT_EQ(OutputOf(ESH_ProcPwd), "Working directory doesn't exist.\r\n");
}

TEST_F(DirTest, TellsTheSpaceOfTheMediumInKilobytes) {
  AddMedium("small:");
  ASSERT_EQ(mount("tmpfs", "/mnt/small:", "tmpfs", 0, "size=4096k"), 0) << std::strerror(errno);
  const auto free_space = [] {
    const std::string line = OutputOf([] { ESH_DirFsInfo("/mnt/small:"); });
    const std::string total = "\r\n4096 KB total (";
    EXPECT_TRUE(line.starts_with(total) && line.ends_with(" KB free)\r\n")) << line;
    return std::strtol(line.c_str() + total.size(), nullptr, 10);
  };
  const long before = free_space();
  EXPECT_LE(before, 4096);
  WriteFile("/mnt/small:/a", std::string(std::size_t{1024} * 1024, 'x'));
  EXPECT_EQ(before - free_space(), 1024);
  EXPECT_EQ(OutputOf([] { ESH_DirFsInfo("/mnt/gone:"); }), "");
}

TEST_F(DirTest, EndsWhenTheUserHasSeenEnough) {
  Make("logs/");
  for (int i = 0; i < 60; ++i) {
    Make("logs/" + std::to_string(i));
  }
  const auto list = [](const char* keys) {
    g_stESh_Display = {.ulScrLines = 24, .ulMoreLines = 24, .ulCurLines = 0};
    return OutputOf([] { (void)ESH_DirFileInDirectory("flash:/logs", false); }, keys);
  };
  const std::string cut = list("q");
  EXPECT_NE(cut.find("---- More ----"), std::string::npos);
  EXPECT_EQ(cut.find("     59"), std::string::npos);
  EXPECT_EQ(cut.find("KB total"), std::string::npos);
  EXPECT_EQ(fs::current_path(), "/mnt/flash:");
  EXPECT_TRUE(list("    ").ends_with(" KB free)\r\n"));
}

}  // namespace
