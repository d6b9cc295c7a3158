#include "remote/local_file.h"

#include <filesystem>
#include <string>
#include <tuple>

#include "shell/result.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"

namespace {

struct LocalFile : PrivateRootTest {};

TEST_F(LocalFile, AGetWritesToTheNameOrIntoTheFolder) {
  AddMedium("flash:");
  std::filesystem::create_directory("/mnt/flash:/dir");
  std::filesystem::create_directory_symlink("/mnt/flash:/dir", "/mnt/flash:/link");
  std::filesystem::current_path("/mnt/flash:");  // which does not count
  constexpr std::tuple<const char*, const char*, const char*> kTargets[] = {
      {"flash:/new", "a/b.cfg", "/mnt/flash:/new"},    {"flash:/", "a/b.cfg", "/mnt/flash://b.cfg"},
      {"flash:", "a/b.cfg", "/mnt/flash://b.cfg"},     {"flash:/", "b.cfg", "/mnt/flash:/b.cfg"},
      {"flash:/link/", "a/b/", "/mnt/flash:/link//b"}, {"flash:/dir", "b/", "/mnt/flash:/dir/b"},
      {"flash:/dir", "/", "/mnt/flash:/dir/"},         {"dir", "b.cfg", "/mnt/dir"},
  };
  for (const auto& [local, remote, expected] : kTargets) {
    TargetName target;
    EXPECT_FALSE(GetFullLocalName(local, remote, target));
    EXPECT_STREQ(target.Text(), expected) << local << " from " << remote;
  }
}

TEST_F(LocalFile, ATargetOfMoreThan4096CharactersIsRefused) {
  const std::string local = "flash:/" + std::string(kMaxTarget - std::string("/mnt/flash:/").size(), 'x');
  TargetName longest;
  EXPECT_FALSE(GetFullLocalName(local.c_str(), "a", longest));
  ScriptedStdio stdio;
  TargetName target;
  EXPECT_EQ(GetFullLocalName((local + "x").c_str(), "a", target), Refusal(ESH_ERR_FAIL));
  EXPECT_EQ(stdio.TakeOutput(), "Local file " + local + " is too long.\r\n");  // what fits of it
}

}  // namespace
