#include <algorithm>
#include <cerrno>
#include <set>
#include <utility>

#include "tests/device/operator_console.h"

namespace {

constexpr int kHalf = 0;   // the call does half of its work
constexpr int kKill = -1;  // the shell is killed in it

constexpr char kDone[] = "Done.";
constexpr char kNoRoom[] = "Failed to finish the operation because of insufficient storage space";
constexpr char kNotDone[] = "Execution failure.";
constexpr char kQuiet[] = "";

/// What a command may leave behind, all files of the medium in order as NAME:CONTENT. "A" is the whole source, "O" the
/// older file, "?" a part.
struct Ending {
  const char* says;  // what the last line begins with
  std::string files;
};

/// A command, the calls that fail in it one after another, and how it may end.
struct Faults {
  const char* line;
  const char* answers;
  int error;
  std::set<std::string> calls;
  std::vector<Ending> endings;  // the first: nothing failed that counts
};

/// A shell whose n-th call of a kind fails, for every n that the command gets to.
class NativeFileFaults : public OperatorConsole {
 protected:
  void SetUp() override {
    OperatorConsole::SetUp();
    options.host_files.push_back({ESH_FAULTS_LIBRARY, "/lib/faults.so"});
    options.environment.push_back("LD_PRELOAD=/lib/faults.so");
    options.environment.emplace_back("ASAN_OPTIONS=verify_asan_link_order=0:allocator_may_return_null=1");
    options.media = {{"flash:", 4 << 20, ""}};
  }

  /// A source of three blocks and a bit, an older file, a folder with a file and an empty one.
  /// @return the shell's descriptors.
  std::string Prepare() {
    return Run("cd /mnt/flash: && rm -rf * && mkdir dir empty && cp /tmp/a /tmp/o . && cp /tmp/o dir/x; ls /proc/" +
               shell_ + "/fd");
  }

  /// @return the files as in an Ending, and the shell's descriptors behind them.
  std::string Files() {
    return Run(
        "cd /mnt/flash:; for f in *; do printf ' %s' $f; [ -d $f ] && continue; printf :; "
        "if cmp -s $f /tmp/a; then printf A; elif cmp -s $f /tmp/o; then printf O; else printf '?'; fi; done;"
        "ls /proc/" +
        shell_ + "/fd");
  }

  /// Runs one command whose n-th call fails. @return whether it got there.
  bool RunWithFault(const Faults& faults, const std::string& call, int number) {
    const std::string descriptors = Prepare();
    const std::string answers = faults.answers;
    if (answers.empty()) Plan(call, number, faults.error);
    Type(std::string(faults.line) + "\r");
    for (std::size_t i = 0; i < answers.size(); ++i) {
      Expect("[Y/N]:");
      if (i + 1 == answers.size()) Plan(call, number, faults.error);
      Type(std::string{answers[i], '\r'});
    }
    const std::string printed = Expect("<boot>");
    const bool reached = Run("cat /tmp/fault; rm /tmp/fault").find(" 0 ") != std::string::npos;
    const std::string files = Files();
    const auto fits = [&](const Ending& ending) {
      return printed.find(ending.says) != std::string::npos && files == ending.files + descriptors;
    };
    // What the medium did not take must be told.
    const bool must_fail = reached && (call == "creat" || call == "write" || call == "fsync");
    EXPECT_TRUE(std::any_of(faults.endings.begin() + (must_fail ? 1 : 0), faults.endings.end(), fits))
        << printed << files;
    return reached;
  }

  void Plan(const std::string& call, int number, int error) {
    ASSERT_TRUE(Board().WriteFile("/tmp/fault", call + " " + std::to_string(number) + " " + std::to_string(error)));
  }

  void UseShell() {
    UseDevice();
    Run("cd /tmp && dd if=/dev/urandom of=a bs=1000 count=100 2>/dev/null; echo older > o");
    shell_ = ShellPid();
  }

  std::string shell_;
};

TEST_F(NativeFileFaults, EveryCallMayFail) {
  constexpr char kBefore[] = " a:A dir empty o:O";
  const Faults kFaults[] = {
      // A failure on the way leaves no part; what was overwritten is lost, and only a read error is taken for the end.
      {"copy a x",
       "y",
       ENOSPC,
       {"creat", "open", "write", "fsync", "close", "malloc"},
       {{kDone, " a:A dir empty o:O x:A"}, {kNoRoom, kBefore}}},
      {"copy a x", "y", kHalf, {"write"}, {{kDone, " a:A dir empty o:O x:A"}, {kNoRoom, kBefore}}},
      {"copy a x", "y", EIO, {"read"}, {{kDone, " a:A dir empty o:O x:A"}, {kDone, " a:A dir empty o:O x:?"}}},
      {"copy a o",
       "yy",
       EIO,
       {"creat", "open", "write", "fsync", "close", "malloc"},
       {{kDone, " a:A dir empty o:A"}, {kNoRoom, " a:A dir empty"}}},
      {"copy a o", "yy", EROFS, {"remove"}, {{kDone, " a:A dir empty o:A"}, {kNoRoom, kBefore}}},
      {"move a x", "y", EAGAIN, {"fork"}, {{kQuiet, " dir empty o:O x:A"}, {kNoRoom, kBefore}}},
      {"move a o", "y", EAGAIN, {"fork"}, {{kQuiet, " dir empty o:A"}, {kNoRoom, " a:A dir empty"}}},
      {"delete a", "y", EROFS, {"remove"}, {{kDone, " dir empty o:O"}, {kNotDone, kBefore}}},
      {"rmdir empty", "y", EIO, {"opendir"}, {{"removed.", " a:A dir o:O"}, {"The directory doesn't exist.", kBefore}}},
      {"rmdir empty", "y", EBUSY, {"rmdir"}, {{"removed.", " a:A dir o:O"}, {"Failed to remove directory.", kBefore}}},
      {"format flash:", "y", EAGAIN, {"fork"}, {{kQuiet, kBefore}, {"Formatting flash: ... done.", " *:?"}}},
      {"format flash:", "y", EIO, {"chdir"}, {{"Formatting flash: ... done.", " *:?"}}},
      {"mkdir x", "", EROFS, {"mkdir"}, {{"created.", " a:A dir empty o:O x"}, {kNotDone, kBefore}}},
      // The fault may also meet what reads the line.
      {"more o", "", EIO, {"open", "read"}, {{"older", kBefore}, {kNotDone, kBefore}, {kQuiet, kBefore}}},
      {"more a", "", ENOMEM, {"malloc"}, {{"Not a text file.", kBefore}, {kQuiet, kBefore}}},
  };
  UseShell();
  for (const Faults& faults : kFaults) {
    for (const std::string& call : faults.calls) {
      int number = 1;
      for (; RunWithFault(faults, call, number) && !HasFailure(); ++number) {
      }
      ASSERT_FALSE(HasFailure()) << faults.line << ": " << call << " number " << number;
      EXPECT_GT(number, 1) << faults.line << " never calls " << call;
    }
  }
  EXPECT_EQ(Command("pwd"), "flash:\n");
}

TEST_F(NativeFileFaults, AGetWaitsForTheMediumThatItWroteAlone) {
  Replace("/bin/tftp", "#!/bin/sh\ncp /tmp/$3 $5\n");
  UseShell();
  for (const char* line : {"tftp 127.0.0.1 get o flash:/x", "tftp 127.0.0.1 get none flash:/y"}) {
    Plan("sync", 1, kKill);
    EXPECT_EQ(Command(line).find("Press Enter"), std::string::npos) << line;
  }
  Plan("syncfs", 1, EIO);
  Command("tftp 127.0.0.1 get o flash:/z");
  EXPECT_EQ(Run("cat /tmp/fault"), "syncfs 0 5\n");
  EXPECT_EQ(Run("grep SigBlk /proc/" + shell_ + "/status"), "SigBlk:\t0000000000000000\n");
}

TEST_F(NativeFileFaults, TABTakesNoPartOfTheNamesForAll) {
  UseShell();
  Run("touch /mnt/flash:/flash.txt");
  const std::pair<const char*, int> kCalls[] = {{"aligned_alloc", 1}, {"opendir", 1}, {"opendir", 2}};
  for (const auto& [call, number] : kCalls) {
    Plan(call, number, ENOMEM);
    Type("dir fl\t\r");
    Expect("The file or directory doesn't exist.");
  }
  Type("dir fl\t");
  Expect("flash");
}

TEST_F(NativeFileFaults, ANameThatCannotBeLookedUpIsNotOffered) {
  UseShell();
  Run("touch /mnt/flash:/x1 /mnt/flash:/x2");
  int offered_alone = 0;
  for (int number = 1; number <= 12; ++number) {  // the media are looked up first
    Plan("lstat", number, EIO);
    Type("dir x?");
    const std::string offers = Expect("<boot>dir x");
    if ((offers.find("x1\n") == std::string::npos) != (offers.find("x2\n") == std::string::npos)) ++offered_alone;
    Type("\r");
    Expect("<boot>");
  }
  EXPECT_EQ(offered_alone, 2);
}

TEST_F(NativeFileFaults, AShellKilledInACopyLosesNoSource) {
  UseShell();
  for (int number = 1; number <= 5; ++number) {  // the fifth does not come: the file has four blocks
    Prepare();
    Type("copy a x\r");
    Expect("[Y/N]:");
    Plan("write", number, kKill);
    Type("y\r");
    Expect(number < 5 ? "Press Enter to start the emergency shell again" : "Done.");
    Run("rm /tmp/fault; cmp /mnt/flash:/a /tmp/a");
    if (number < 5) Type("\r");
    Expect("<boot>");
    shell_ = ShellPid();
  }
}

}  // namespace
