#include "tests/device/operator_console.h"

namespace {

constexpr char kDone[] = "Done.";
constexpr char kNoRoom[] = "Failed to finish the operation because of insufficient storage space";
constexpr char kBefore[] = "a:A dir empty o:O ";

/// A command in which a call fails, and what it leaves on the medium: "A" is the whole source, "O" the older file, "?"
/// something else.
struct Fault {
  const char* line;
  const char* answers;
  const char* plan;  ///< CALL NUMBER ERROR, as tests/faults has it
  const char* said;
  const char* files;
};

/// A failure on the way leaves no part; what was overwritten is lost, and only a read error is taken for the end.
constexpr Fault kFaults[] = {
    {"copy a x", "y", "creat 1 ENOSPC", kNoRoom, kBefore},
    {"copy a x", "y", "write 2 ENOSPC", kNoRoom, kBefore},
    {"copy a x", "y", "write 2 HALF", kNoRoom, kBefore},
    {"copy a x", "y", "read 2 EIO", kDone, "a:A dir empty o:O x:? "},
    {"copy a x", "y", "fsync 1 EIO", kNoRoom, kBefore},
    {"copy a x", "y", "large-malloc 1 ENOMEM", kNoRoom, kBefore},
    {"copy a o", "yy", "write 4 EIO", kNoRoom, "a:A dir empty "},
    {"copy a o", "yy", "remove 1 EROFS", kNoRoom, kBefore},
    {"move a x", "y", "fork 1 EAGAIN", kNoRoom, kBefore},
    {"delete a", "y", "remove 1 EROFS", "Execution failure.", kBefore},
    {"rmdir empty", "y", "opendir 1 EIO", "The directory doesn't exist.", kBefore},
    {"rmdir empty", "y", "rmdir 1 EBUSY", "Failed to remove directory.", kBefore},
    {"format flash:", "y", "fork 1 EAGAIN", "", kBefore},
};

/// A shell of which a chosen call fails.
class NativeFileFaults : public OperatorConsole {
 protected:
  void SetUp() override {
    Replace("/bin/tftp", "#!/bin/sh\ncp /tmp/$3 $5\n");
    options.host_files.push_back({ESH_FAULTS_LIBRARY, "/lib/faults.so"});
    options.environment.emplace_back("LD_PRELOAD=/lib/faults.so");
    options.environment.emplace_back("ASAN_OPTIONS=verify_asan_link_order=0:allocator_may_return_null=1");
    UseDevice();
    Run("cd /tmp && dd if=/dev/urandom of=a bs=1000 count=100 2>/dev/null; echo older > o");
  }

  void Plan(const std::string& plan) { ASSERT_TRUE(Device().WriteFile("/tmp/fault", plan)); }

  /// A source of three blocks and a bit, an older file, a folder with a file and an empty one.
  void Prepare() { Run("cd /mnt/flash: && rm -rf * && mkdir dir empty && cp /tmp/a /tmp/o . && cp /tmp/o dir/x"); }

  std::string Descriptors() { return Run("ls /proc/" + ShellPid() + "/fd"); }
};

TEST_F(NativeFileFaults, LoseNoSourceLeaveNoPartAndAreTold) {
  const std::string descriptors = Descriptors();
  for (const auto& [line, answers, plan, said, files] : kFaults) {
    SCOPED_TRACE(std::string(line) + ": " + plan);
    Prepare();
    Type(std::string(line) + "\r");
    for (const char* answer = answers; *answer != '\0'; ++answer) {
      Expect("[Y/N]:");
      if (answer[1] == '\0') Plan(plan);
      Type({answer, 1});
      Type("\r");
    }
    EXPECT_NE(Expect("<boot>").find(said), std::string::npos);
    EXPECT_EQ(Run("cat /tmp/fault; rm /tmp/fault"), "due\n") << "it never got there";
    EXPECT_EQ(Run("cd /mnt/flash:; for f in *; do printf %s $f; [ -d $f ] || "
                  "if cmp -s $f /tmp/a; then printf :A; elif cmp -s $f /tmp/o; then printf :O; else printf ':?'; fi;"
                  "printf ' '; done"),
              files);
  }
  EXPECT_EQ(Descriptors(), descriptors);
}

TEST_F(NativeFileFaults, AGetWaitsForTheMediumThatItWroteAlone) {
  for (const char* plan : {"sync 1 EIO", "syncfs 1 EIO"}) {
    Plan(plan);
    Command("tftp 127.0.0.1 get o flash:/x", "y\r");
    EXPECT_EQ(Run("cat /tmp/fault"), plan[4] == ' ' ? "sync 1 EIO" : "due\n");
  }
}

/// Loses each block of memory in turn. From a part of the names TAB would take the only one, which "dir" then lists.
TEST_F(NativeFileFaults, TABTakesNoPartOfTheNamesForAll) {
  Run("touch /mnt/flash:/flash.txt");
  for (const std::string key : {"?", "\t"}) {
    std::string said;
    int number = 0;
    for (bool is_due = true; is_due && number < 200;) {
      Type("dir fl");
      Expect("dir fl");
      Plan("malloc " + std::to_string(++number) + " ENOMEM");
      Type(key);
      Expect("<boot>");
      is_due = Run("cat /tmp/fault; rm /tmp/fault") == "due\n";
      Type("\r");
      said = Expect("<boot>");
      EXPECT_EQ(said.find("Directory of"), std::string::npos) << number << said;
    }
    EXPECT_NE(said.find(key == "?" ? "dir fl\n" : "dir flash\n"), std::string::npos) << number << said;
    EXPECT_GT(number, 10);
  }
}

TEST_F(NativeFileFaults, AShellKilledInACopyLosesNoSource) {
  Prepare();
  Type("copy a x\r");
  Expect("[Y/N]:");
  Plan("write 2 KILL");
  Type("y\r");
  Expect("Press Enter to start the emergency shell again");
  Run("cmp /mnt/flash:/a /tmp/a");
}

}  // namespace
