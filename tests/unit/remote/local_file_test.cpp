#include "remote/local_file.h"

#include <unistd.h>

#include <filesystem>
#include <string>

#include "remote/remote_file.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

namespace fs = std::filesystem;

/// flash: with a folder, and a working directory that is not where a get writes to.
struct LocalFile : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    AddMedium("flash:");
    fs::create_directory("/mnt/flash:/dir");
    fs::create_directory_symlink("/mnt/flash:/dir", "/mnt/flash:/link");
    fs::create_symlink("/mnt/gone", "/mnt/flash:/dangling");
    WriteFile("/mnt/flash:/file", "");
    ASSERT_EQ(chdir("/mnt/flash:"), 0);
  }
};

TEST_F(LocalFile, AGetWritesToTheNameOrIntoTheFolder) {
  const struct {
    const char* local;
    const char* remote;
    const char* target;
  } kTargets[] = {
      {"flash:/new", "a/b.cfg", "/mnt/flash:/new"},
      {"flash:/file", "b.cfg", "/mnt/flash:/file"},
      {"flash:/", "a/b.cfg", "/mnt/flash://b.cfg"},
      {"flash:", "a/b.cfg", "/mnt/flash://b.cfg"},
      {"flash:", "b.cfg", "/mnt/flash:/b.cfg"},
      {"flash:/", "b.cfg", "/mnt/flash:/b.cfg"},
      {"flash:/dir", "/b.cfg", "/mnt/flash:/dir//b.cfg"},
      {"flash:/link/", "a/b/", "/mnt/flash:/link//b"},
      {"flash:/dir", "b/", "/mnt/flash:/dir/b"},
      {"flash:/dir", "/", "/mnt/flash:/dir/"},
      {"new", "b.cfg", "/mnt/new"},  // not below the working directory
      {"dir", "b.cfg", "/mnt/dir"},
  };
  for (const auto& c : kTargets) {
    TargetName target;
    EXPECT_FALSE(GetFullLocalName(c.local, c.remote, target)) << c.target;
    EXPECT_STREQ(target.Text(), c.target) << c.local << " from " << c.remote;
  }
}

TEST_F(LocalFile, ATargetOfMoreThan4096CharactersIsRefused) {
  std::string local = "flash:/" + std::string(kMaxTarget - std::string("/mnt/flash:/").size(), 'x');
  ScriptedStdio stdio;
  TargetName longest;
  EXPECT_FALSE(GetFullLocalName(local.c_str(), "a", longest));
  EXPECT_EQ(longest.Length(), kMaxTarget);
  local += 'x';
  TargetName target;
  EXPECT_EQ(GetFullLocalName(local.c_str(), "a", target), Refusal(ESH_ERR_FAIL));
  local.pop_back();  // the message shows what fits
  EXPECT_EQ(stdio.TakeOutput(), "Local file " + local + " is too long.\r\n");
}

TEST_F(LocalFile, AGetNeedsTheFolderItWritesTo) {
  for (const char* local : {"new", "dir", "flash:", "flash:/", "flash:/new", "flash:/dir/new", "flash:/link/new"}) {
    ESH_RecordLocalFile(local);
    EXPECT_FALSE(CheckLocalFile("ftp")) << local;
  }
  for (const char* local : {"dir/new", "flash:/no/new", "flash:/file/new", "flash:/no/", "gone:/new"}) {
    ScriptedStdio stdio;
    ESH_RecordLocalFile(local);
    EXPECT_EQ(CheckLocalFile("tftp"), Refusal(ESH_ERR_FAIL));
    EXPECT_EQ(stdio.TakeOutput(), "tftp: can't open '" + std::string(local) + "': No such file or directory\r\n");
  }
}

TEST_F(LocalFile, APutReadsBelowTheWorkingDirectory) {
  const char kWrongName[] = "Wrong file name (directory name). Please check it.\r\n";
  const struct {
    const char* local;
    Refusal refusal;
    std::string shown;  // the full name, or the message
  } kSources[] = {
      {"file", {}, "/mnt/flash:/file"},
      {"flash:/dir/../file", {}, "/mnt/flash:/file"},
      {"dir", {}, "/mnt/flash:/dir"},  // the tool says what it thinks of that
      {"dir/", kSuccess, kWrongName},
      {"flash:", kSuccess, kWrongName},
      {"../flash:/file", kSuccess, kWrongName},
      {"../file", kSuccess, kWrongName},
      {"no", ESH_ERR_FAIL, "ftp: can't open 'no': No such file or directory\r\n"},
      {"dangling", ESH_ERR_FAIL, "ftp: can't open 'dangling': No such file or directory\r\n"},
  };
  for (const auto& c : kSources) {
    ScriptedStdio stdio;
    char full[kNameRoom];
    ESH_RecordLocalFile(c.local);
    EXPECT_EQ(GetLocalFileFullName("ftp", full), c.refusal) << c.local;
    const std::string printed = stdio.TakeOutput();
    EXPECT_EQ(c.refusal ? printed : full, c.shown) << c.local;
  }
}

TEST(RemoteFile, IsNoOptionOfTheTool) {
  for (const char* option : {"-v", "--", "-P21", "-c/x"}) {
    ScriptedStdio stdio;
    ESH_RecordRemoteFile(option);
    EXPECT_EQ(CheckRemoteIsNoOption(), Refusal(ESH_ERR_FAIL)) << option;
  }
  for (const char* name : {"-", "./-v", "a-v", "/-v"}) {
    ESH_RecordRemoteFile(name);
    EXPECT_FALSE(CheckRemoteIsNoOption()) << name;
  }
}

}  // namespace
