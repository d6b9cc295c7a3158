#include "remote/local_file.h"

#include <unistd.h>

#include <filesystem>
#include <string>

#include "shell/result.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

struct LocalFile : PrivateRootTest {};

TEST_F(LocalFile, AGetWritesToTheNameOrIntoTheFolder) {
  AddMedium("flash:");
  std::filesystem::create_directory("/mnt/flash:/dir");
  std::filesystem::create_directory_symlink("/mnt/flash:/dir", "/mnt/flash:/link");
  ASSERT_EQ(chdir("/mnt/flash:"), 0);  // which does not count
  const struct {
    const char* local;
    const char* remote;
    const char* target;
  } kTargets[] = {
      {"flash:/new", "a/b.cfg", "/mnt/flash:/new"},    {"flash:/", "a/b.cfg", "/mnt/flash://b.cfg"},
      {"flash:", "a/b.cfg", "/mnt/flash://b.cfg"},     {"flash:", "b.cfg", "/mnt/flash:/b.cfg"},
      {"flash:/", "b.cfg", "/mnt/flash:/b.cfg"},       {"flash:/dir", "/b.cfg", "/mnt/flash:/dir//b.cfg"},
      {"flash:/link/", "a/b/", "/mnt/flash:/link//b"}, {"flash:/dir", "b/", "/mnt/flash:/dir/b"},
      {"flash:/dir", "/", "/mnt/flash:/dir/"},         {"dir", "b.cfg", "/mnt/dir"},
  };
  for (const auto& c : kTargets) {
    TargetName target;
    EXPECT_FALSE(GetFullLocalName(c.local, c.remote, target)) << c.target;
    EXPECT_STREQ(target.Text(), c.target) << c.local << " from " << c.remote;
  }
}

TEST_F(LocalFile, ATargetOfMoreThan4096CharactersIsRefused) {
  std::string local = "flash:/" + std::string(kMaxTarget - std::string("/mnt/flash:/").size(), 'x');
  TargetName longest;
  EXPECT_FALSE(GetFullLocalName(local.c_str(), "a", longest));
  EXPECT_EQ(longest.Length(), kMaxTarget);
  ScriptedStdio stdio;
  TargetName target;
  EXPECT_EQ(GetFullLocalName((local + "x").c_str(), "a", target), Refusal(ESH_ERR_FAIL));
  EXPECT_EQ(stdio.TakeOutput(), "Local file " + local + " is too long.\r\n");  // what fits of it
}

}  // namespace
