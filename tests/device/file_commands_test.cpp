#include "tests/device/operator_console.h"

namespace {

constexpr char kNoSuchFile[] = "The file or directory doesn't exist.\n";
constexpr char kNoRoom[] =
    "Failed to finish the operation because of insufficient storage space or quota limitation.\n";

/// What an operator does with files, and what is on the media afterwards.
class FileCommands : public OperatorConsole {
 protected:
  void SetUp() override {
    OperatorConsole::SetUp();
    options.media = {{"flash:", 8 << 20, ""}, {"cfa0:", 1 << 20, ""}};
  }

  void BootWithFiles() {
    BootToPrompt();
    Run("cd /mnt/flash: && mkdir dir && echo text > a && echo older > b && chmod 640 a && ln -s a link && ln a hard");
  }

  /// Types a line and answers its questions. @return all that was printed behind the line.
  std::string Ask(const std::string& line, const std::string& answers) {
    Type(line + "\r");
    Expect("\n");
    std::string printed;
    for (const char answer : answers) {
      printed += Expect("[Y/N]:");
      Type({&answer, 1});
      Type("\r");
    }
    printed += Expect("<boot>");
    return printed.substr(0, printed.size() - std::string("<boot>").size());
  }

  std::string OnFlash(const std::string& command) { return Run("cd /mnt/flash: && " + command); }
};

struct Exchange {
  const char* line;
  const char* answers;
  std::string printed;
};

TEST_F(FileCommands, CopyAsksAndTells) {
  const Exchange kExchanges[] = {
      {"copy a c", "n", "Copy flash:/a to flash:/c?[Y/N]:n\n"},
      {"copy a c", "y", "Copy flash:/a to flash:/c?[Y/N]:y\nStart to copy flash:/a to flash:/c... Done.\n"},
      {"copy a b", "yn", "Copy flash:/a to flash:/b?[Y/N]:y\nflash:/b already exists. Overwrite it?[Y/N]:n\n"},
      {"copy a ./a", "", "The destination file can't be the same as the source file.\n"},
      {"copy link a", "", "The destination file can't be the same as the source file.\n"},
      {"copy a nodir/", "", kNoSuchFile},
      {"copy a nodir/x", "", kNoSuchFile},
      {"copy a b/", "", kNoSuchFile},
      {"copy a b/x", "", kNoSuchFile},
      {"copy dir x", "", kNoSuchFile},
      {"copy nothing x", "", kNoSuchFile},
      {"copy a/ x", "", kNoSuchFile},
      {"copy a dir", "y", "Copy flash:/a to flash:/dir/a?[Y/N]:y\nStart to copy flash:/a to flash:/dir/a... Done.\n"},
      {"copy a cfa0:", "y", "Copy flash:/a to cfa0:/a?[Y/N]:y\nStart to copy flash:/a to cfa0:/a... Done.\n"},
  };
  BootWithFiles();
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(Ask(exchange.line, exchange.answers), exchange.printed) << exchange.line;
  }
  EXPECT_EQ(OnFlash("cat c dir/a b /mnt/cfa0:/a; stat -c %a c"), "text\ntext\nolder\ntext\n640\n");
}

TEST_F(FileCommands, OverwritingReplacesTheEntryAndNothingElse) {
  BootWithFiles();
  OnFlash("ln -s b to-b && ln -s gone dangling && mkfifo fifo");
  for (const char* destination : {"hard", "to-b", "dangling", "fifo"}) {
    EXPECT_NE(Ask(std::string("copy b ") + destination, "yy").find("Done."), std::string::npos) << destination;
  }
  EXPECT_EQ(OnFlash("cat a b hard to-b dangling fifo; ls gone 2>&1 | wc -l; find . -type l -name '[td]*'"),
            "text\nolder\nolder\nolder\nolder\nolder\n1\n")
      << "a hard link keeps its text; links and fifos are neither followed nor waited on";
}

TEST_F(FileCommands, AFullMediumLosesNothing) {
  BootWithFiles();
  OnFlash("dd if=/dev/zero of=big bs=1k count=2000 2>/dev/null");
  EXPECT_TRUE(Ask("copy big cfa0:", "y").ends_with(kNoRoom));
  EXPECT_TRUE(Ask("move big cfa0:", "y").ends_with(kNoRoom));
  EXPECT_EQ(OnFlash("stat -c %s big; ls /mnt/cfa0:"), "2048000\n");
}

TEST_F(FileCommands, MoveAsksAndTells) {
  const Exchange kExchanges[] = {
      {"move a c", "n", "Move flash:/a to flash:/c?[Y/N]:n\n"},
      {"move a c", "y", "Move flash:/a to flash:/c?[Y/N]:y\n"},
      {"move c b", "y", "Move flash:/c to flash:/b?[Y/N]:y\n"},
      {"move b dir", "y", "Move flash:/b to flash:/dir/b?[Y/N]:y\n"},
      {"move dir x", "", kNoSuchFile},
  };
  BootWithFiles();
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(Ask(exchange.line, exchange.answers), exchange.printed) << exchange.line;
  }
  Ask("move dir/b dir/b", "y");
  EXPECT_EQ(OnFlash("ls; cat dir/b"), "dir\nhard\nlink\ntext\n") << "a move onto itself must not lose the file";
}

TEST_F(FileCommands, AToolThatIsKilledLosesNothing) {
  Replace("/bin/mv", "#!/bin/sh\ncp $1 $2; [ -e /tmp/last ] && rm $1; kill -9 $$\n");
  BootWithFiles();
  EXPECT_TRUE(Ask("move a x", "y").ends_with(kNoRoom));
  EXPECT_EQ(OnFlash("cat a; ls x 2>/dev/null; true"), "text\n") << "the part goes, the source stays";
  Run("touch /tmp/last");
  EXPECT_TRUE(Ask("move a x", "y").ends_with(kNoRoom));
  EXPECT_EQ(OnFlash("cat x"), "text\n") << "the only copy is kept";
}

TEST_F(FileCommands, DeleteAsksAndTells) {
  constexpr char kWait[] = "Deleting the file permanently will take a long time. Please wait...\n";
  const Exchange kExchanges[] = {
      {"delete a", "n", "Delete flash:/a?[Y/N]:n\n"},
      {"delete a", "y", std::string("Delete flash:/a?[Y/N]:y\n") + kWait + "Start to delete flash:/a...Done.\n"},
      {"delete a", "", kNoSuchFile},
      {"delete b/", "", kNoSuchFile},
      {"delete dir", "", "Please use 'rmdir' to remove a directory.\n"},
      {"delete flash:", "", "             ^\n % Wrong parameter found at '^' position.\n"},
  };
  BootWithFiles();
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(Ask(exchange.line, exchange.answers), exchange.printed) << exchange.line;
  }
  EXPECT_EQ(OnFlash("ls; cat hard"), "b\ndir\nhard\nlink\ntext\n");
}

TEST_F(FileCommands, DirectoriesAreMadeAndRemoved) {
  const Exchange kExchanges[] = {
      {"mkdir new", "", "Directory flash:/new created.\n"},
      {"mkdir new/", "", "The directory already exists.\n"},
      {"mkdir a", "", "The file with the same name already exists.\n"},
      {"mkdir no/new", "", kNoSuchFile},
      {"mkdir dangling", "", "Execution failure.\n"},
      {"rmdir new", "n", "Remove directory flash:/new?[Y/N]:n\n"},
      {"rmdir new", "y", "Remove directory flash:/new?[Y/N]:y\nDirectory flash:/new removed.\n"},
      {"rmdir new", "", "The directory doesn't exist.\n"},
      {"rmdir a", "", "The directory doesn't exist.\n"},
      {"rmdir full", "y",
       "Remove directory flash:/full?[Y/N]:y\nFailed to remove the directory because it is not empty.\n"},
      {"rmdir to-dir", "y", "Remove directory flash:/to-dir?[Y/N]:y\nFailed to remove directory.\n"},
  };
  BootWithFiles();
  OnFlash("ln -s gone dangling && mkdir full && touch full/.hidden && ln -s dir to-dir");
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(Ask(exchange.line, exchange.answers), exchange.printed) << exchange.line;
  }
}

TEST_F(FileCommands, MoreShowsTextOnly) {
  BootWithFiles();
  OnFlash(
      "seq 40 > lines && printf 'gr\\303\\274n\\n' > utf8 && printf 'a\\0b\\nc\\n' > nul && : > empty && mkfifo fifo");
  EXPECT_EQ(Command("more utf8"), "Not a text file.\n");
  EXPECT_EQ(Command("more empty"), kNoSuchFile);
  EXPECT_EQ(Command("more fifo"), kNoSuchFile);
  EXPECT_EQ(Command("more dir"), kNoSuchFile);
  Type("more nul\r");
  Expect("more nul\r\r\na<boot>");
  Type("more lines\r");
  EXPECT_TRUE(Expect("---- More ----     ").find("\n24\n") != std::string::npos);
  Type(" ");
  EXPECT_TRUE(Expect("<boot>").ends_with("40\n<boot>"));
}

TEST_F(FileCommands, FormatEmptiesAMediumAndChoosesTheDirectoryAgain) {
  BootWithFiles();
  EXPECT_EQ(Ask("format flash:", "n"), "All data on flash: will be lost, proceed with format? [Y/N]:n\n");
  EXPECT_EQ(OnFlash("cat a"), "text\n");
  Ask("format flash:/", "y");
  EXPECT_EQ(OnFlash("ls"), "");
  EXPECT_EQ(Command("pwd"), "flash:\n");
  EXPECT_NE(Command("format .").find("Wrong parameter"), std::string::npos);
  Run("umount -l /mnt/cfa0:; rmdir /mnt/cfa0:");
  EXPECT_EQ(Command("format cfa0:"), "cfa0: doesn't exist.\n");
}

}  // namespace
