#include <tuple>

#include "tests/device/operator_console.h"

namespace {

constexpr char kNoSuchFile[] = "The file or directory doesn't exist.\n";
constexpr char kSameFile[] = "The destination file can't be the same as the source file.\n";
constexpr char kNoRoom[] =
    "Failed to finish the operation because of insufficient storage space or quota limitation.\n";

/// What an operator does with files, and what is on the media afterwards.
struct FileCommands : OperatorConsole {
  void SetUp() override {
    options.media = {{"flash:", 8 << 20, ""}, {"cfa0:", 1 << 20, ""}, {"usba0:", 1 << 20, ""}, {"usba1:", 1 << 20, ""}};
    Replace("/bin/mv", "#!/bin/sh\nexec /bin/busybox mv \"$@\" 2> /dev/null\n");  // whose words differ by release
    UseDevice();
    OnFlash("mkdir dir && echo text > a && echo older > b");
  }

  std::string OnFlash(const std::string& command) { return Run("cd /mnt/flash: && " + command); }
};

/// With links, fifos and modes, which FAT does not have, and with a tool that fails.
struct NativeFileCommands : FileCommands {};

TEST_F(FileCommands, TakeANoAndSayWhyTheyRefuse) {
  OnFlash("mkdir full && touch full/.hidden");
  ExpectAll({
      {"copy a c", "n\r", "Copy flash:/a to flash:/c?[Y/N]:n\n"},
      {"copy a nodir/x", "", kNoSuchFile},
      {"copy a/ c", "", kNoSuchFile},
      {"copy a new/", "", kNoSuchFile},
      {"move dir x", "", kNoSuchFile},
      {"move a x", "n\r", "Move flash:/a to flash:/x?[Y/N]:n\n"},
      {"mkdir dir/", "", "The directory already exists.\n"},
      {"mkdir a/x", "", kNoSuchFile},
      {"mkdir a", "", "The file with the same name already exists.\n"},
      {"rmdir a", "", "The directory doesn't exist.\n"},
      {"rmdir dir", "n\r", "Remove directory flash:/dir?[Y/N]:n\n"},
      {"rmdir full", "y\r",
       "Remove directory flash:/full?[Y/N]:y\nFailed to remove the directory because it is not empty.\n"},
      {"delete a", "n\r", "Delete flash:/a?[Y/N]:n\n"},
      {"delete a/", "", kNoSuchFile},
      {"delete gone", "", kNoSuchFile},
      {"delete dir", "", "Please use 'rmdir' to remove a directory.\n"},
      {"delete flash:", "", "             ^\n % Wrong parameter found at '^' position.\n"},
  });
  Command("move b b", "y\r");
  EXPECT_EQ(OnFlash("ls; cat a b"), "a\nb\ndir\nfull\ntext\nolder\n") << "also after a move onto itself";
}

TEST_F(FileCommands, AMediumThatTakesNothingLosesNothing) {
  Run("echo kept > /mnt/cfa0:/a");
  ASSERT_TRUE(Device().ProtectMedium("cfa0:"));
  ASSERT_TRUE(Device().FillMedium("usba0:"));
  const std::pair<const char*, const char*> kLines[] = {{"copy b cfa0:/a", "y\ry\r"},
                                                        {"move b cfa0:/a", "y\r"},
                                                        {"move cfa0:/a flash:/moved", "y\r"},
                                                        {"copy a usba0:/c", "y\r"},
                                                        {"move a usba0:/m", "y\r"}};
  for (const auto& [line, keys] : kLines) EXPECT_TRUE(Command(line, keys).ends_with(kNoRoom)) << line;
  EXPECT_EQ(OnFlash("cat a b /mnt/cfa0:/a; ls; ls /mnt/usba0:"), "text\nolder\nkept\na\nb\ndir\nfill\n");
  EXPECT_TRUE(Command("dir usba0:").ends_with(" KB total (0 KB free)\n"));
  EXPECT_TRUE(Command("delete cfa0:/a", "y\r").ends_with("\nExecution failure.\n"));
  Run("mount -o remount,bind,rw /mnt/cfa0:");
}

TEST_F(FileCommands, OneFileUnderTwoNamesIsNotLost) {
  // A FAT file in capitals is the same; elsewhere a second mount of the folder shows it twice.
  const std::string other = IsArm64() ? "dir/A" : "twin/a";
  OnFlash("echo both > dir/a");
  if (!IsArm64())
    OnFlash("mount -o remount,bind none /mnt/flash: && mkdir twin && mount -o bind dir twin && ln -s a link");
  EXPECT_TRUE(Command("dir " + other).find("   a\n") != std::string::npos) << "as the medium spells it";
  EXPECT_EQ(Command("copy dir/a " + other), kSameFile);
  Command("move dir/a " + other, "y\r");
  EXPECT_EQ(OnFlash("cat dir/[aA]"), "both\n");
  if (!IsArm64()) {
    EXPECT_TRUE(Command("move link a", "y\r").ends_with(kNoRoom)) << "the link would take the file's place";
    OnFlash("mkdir dir/in && echo deep > dir/in/in");
    EXPECT_TRUE(Command("move twin/in/in dir", "y\r").ends_with(kNoRoom))
        << "the folder of that name holds the file itself";
    EXPECT_EQ(OnFlash("cat dir/in/in; rm -r dir/in; umount twin"), "deep\n");
  }
  EXPECT_EQ(OnFlash("cat a"), "text\n");
}

TEST_F(FileCommands, MoreShowsTextOnly) {
  OnFlash(
      "seq 40 > lines && printf '\\200' > high && printf 'a\\0\\0' > nuls && printf 'a\\0%1021s\\177' > nul && : > "
      "empty");
  for (const char* file : {"high", "nuls"}) EXPECT_EQ(Command(std::string("more ") + file), "Not a text file.\n");
  for (const char* file : {"empty", "dir", "lines/"}) EXPECT_EQ(Command(std::string("more ") + file), kNoSuchFile);
  // A NUL byte hides what follows it in its chunk of 1023 bytes, and no more.
  Press("more nul\r", "more nul\r\r\na\177<boot>");
  EXPECT_TRUE(Press("more lines\r", "---- More ----     ").find("\n24\n") != std::string::npos);
  EXPECT_TRUE(Press(" ", "<boot>").ends_with("40\n<boot>"));
}

TEST_F(FileCommands, FormatEmptiesAMediumAndChoosesTheDirectoryAgain) {
  EXPECT_EQ(Command("format flash:", "n\r"), "All data on flash: will be lost, proceed with format? [Y/N]:n\n");
  EXPECT_EQ(OnFlash("cat a"), "text\n");
  Command("format flash:/", "y\r");
  EXPECT_EQ(OnFlash("ls"), "");
  EXPECT_EQ(Command("pwd"), "flash:\n");
  for (const char* line : {"format .", "format /mnt/flash:", "format flash:/a", "format flash:/a/"})
    EXPECT_NE(Command(line).find("Wrong parameter"), std::string::npos) << line;
  OnFlash("echo text > a; ln -s /mnt/gone /mnt/slot0#usbb0:");
  EXPECT_EQ(Command("format usbb0:"), "usbb0: doesn't exist.\n");
  EXPECT_EQ(Command("move a usbb0:"), kNoSuchFile) << "the name of a medium that is gone is no file's";
  Run("rm /mnt/slot0#usbb0:");
}

TEST_F(FileCommands, AMediumMayBePulledWhileSomethingWaits) {
  Run("echo there > /mnt/usba0:/there; cd /mnt/usba1:; for i in $(seq 30); do : > f$i; done; sync");
  const std::tuple<const char*, const char*, const char*, const char*> kPulls[] = {
      {"copy usba0:/there c", "[Y/N]:", "usba0:", "y\r"},
      {"dir usba1:", "---- More ----     ", "usba1:", " "},
      {"copy a cfa0:/x", "[Y/N]:", "cfa0:", "y\r"},
  };
  for (const auto& [line, waits, medium, key] : kPulls) {
    Press(std::string(line) + "\r", waits);
    ASSERT_TRUE(Device().PullMedium(medium));
    Press(key, "<boot>");
    EXPECT_EQ(OnFlash("cat a"), "text\n") << line;
    EXPECT_EQ(Command("pwd"), "flash:\n");
  }
  NewDevice();
}

TEST_F(NativeFileCommands, TheWorkingDirectoryMayVanish) {
  Replace("/etc/pkg/esh/mount.sh", "#!/bin/sh\nmkdir /mnt/flash:\n");
  options.media.clear();
  NewDevice();
  BootToPrompt();
  Run("rmdir /mnt/flash:");
  EXPECT_EQ(Command("dir"), "The file or directory doesn't exist.\n");
  Press("pwd\r", "\nCheckInvalidFileDir<boot>");
  Run("mkdir -p /mnt/cfa0:/a; ln -s /mnt/cfa0: /mnt/slot0#cfa0:");
  EXPECT_EQ(Command("rmdir cfa0:/a"), "The directory doesn't exist.\n");
}

TEST_F(NativeFileCommands, LinksFifosAndFoldersAreNotMistaken) {
  OnFlash(
      "mount -o remount,bind none . &&"  // links are followed, as on a device that mounted it so
      "chmod 640 b && ln -s a link && ln a hard && ln b B && ln -s gone dangling && ln -s b to-b && ln -s dir to-dir &&"
      "mkfifo fifo && mkdir -p full/a && echo kept > full/a/kept");
  ExpectAll({
      {"copy link a", "", kSameFile},
      {"copy a full", "y\ry\r",
       std::string("Copy flash:/a to flash:/full/a?[Y/N]:y\nflash:/full/a already exists. Overwrite it?[Y/N]:y\n") +
           kNoRoom},
      {"mkdir dangling", "", "Execution failure.\n"},
      {"rmdir to-dir", "y\r", "Remove directory flash:/to-dir?[Y/N]:y\nFailed to remove directory.\n"},
      {"more fifo", "", kNoSuchFile},
  });
  for (const char* destination : {"B", "hard", "to-b", "dangling", "fifo"})
    EXPECT_TRUE(Command(std::string("copy b ") + destination, "y\ry\r").ends_with("Done.\n")) << destination;
  Command("delete link", "y\r");
  EXPECT_EQ(
      OnFlash("cat a b full/a/kept; stat -c '%F %a %s' B hard to-b dangling fifo; ls -d gone link 2> /dev/null ||:"),
      "text\nolder\nkept\nregular file 640 6\nregular file 640 6\nregular file 640 6\nregular file 640 6\nregular file "
      "640 6\n")
      << "a hard link keeps its text; links and fifos are neither followed nor waited on";
}

TEST_F(NativeFileCommands, ALinkLeadsNoWriteOffTheMedia) {
  Run("mount -o remount,bind none /mnt/cfa0:; mkdir -p /tmp/own/dir; echo own > /tmp/own/file; cd /mnt/cfa0: &&"
      "mkdir b && ln -s /tmp/own l && ln -s ./l/dir/.. chain && ln -s ../../tmp/own/dir a && ln -s /mnt m &&"
      "ln -s /tmp/own/new b/b && ln -s /tmp/own/new new && ln -s /mnt/flash:/dir other");
  for (const char* line : {"copy a cfa0:/l", "copy a cfa0:/chain/file", "copy a cfa0:/m/x", "move a cfa0:/l/x",
                           "move a cfa0:", "move cfa0:/l/file x", "delete cfa0:/l/file", "mkdir cfa0:/l/x"})
    EXPECT_EQ(Command(line), kNoSuchFile) << line;
  EXPECT_EQ(Command("rmdir cfa0:/l/dir"), "The directory doesn't exist.\n");
  EXPECT_EQ(Command("more cfa0:/l/file"), "own\n") << "reading follows them";
  EXPECT_TRUE(Command("copy cfa0:/l/file cfa0:/other/x", "y\r").ends_with("Done.\n")) << "from one medium to another";
  Command("move a cfa0:/new", "y\r");
  Command("move b cfa0:", "y\r");
  EXPECT_EQ(Run("cd /mnt/cfa0:; cat new b/b /mnt/flash:/dir/x; cd /tmp/own; ls; cat file"),
            "text\nolder\nown\ndir\nfile\nown\n")
      << "links that lead nowhere are replaced";
}

TEST_F(NativeFileCommands, AToolThatIsKilledLosesNothing) {
  ASSERT_TRUE(Device().WriteFile("/bin/mv", "#!/bin/sh\ncp $1 $2; [ -e /tmp/last ] && rm $1; kill -9 $$\n"));
  EXPECT_TRUE(Command("move a x", "y\r").ends_with(kNoRoom));
  EXPECT_EQ(OnFlash("cat a; ls x 2>/dev/null; true"), "text\n") << "the part goes, the source stays";
  Run("touch /tmp/last");
  EXPECT_TRUE(Command("move a x", "y\r").ends_with(kNoRoom));
  EXPECT_EQ(OnFlash("cat x"), "text\n") << "the only copy is kept";
  NewDevice();  // its mv is of no use to others
}

}  // namespace
