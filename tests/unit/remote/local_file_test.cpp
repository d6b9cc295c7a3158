#include "remote/local_file.h"

#include <sys/mount.h>

#include <filesystem>
#include <string>
#include <utility>

#include "shell/command/parameter.h"
#include "tests/support/private_root.h"
#include "tests/support/scripted_stdio.h"
#include "util/result.h"

namespace {

struct LocalFile : PrivateRootTest {};

TEST_F(LocalFile, ALinkLeadsNoGetOffTheMedia) {
  for (const char* device : {"flash:", "cfa0:"}) AddMedium(device);
  std::filesystem::create_directories("/tmp/own/dir");
  WriteFile("/tmp/own/file", "");
  for (const char* file : {"/mnt/flash:/there", "/mnt/cfa0:/node"}) WriteFile(file, "");
  ASSERT_EQ(mount("/dev/null", "/mnt/cfa0:/node", nullptr, MS_BIND, nullptr), 0);
  constexpr std::pair<const char*, const char*> kLinks[] = {
      {"l", "/tmp/own"}, {"chain", "./l/dir"},   {"file", "../../tmp/own/file"}, {"new", "/tmp/new"},
      {"up", "/mnt"},    {"other", "../flash:"}, {"there", "../flash:/there"},
  };
  for (const auto& [link, leads_to] : kLinks)
    std::filesystem::create_symlink(leads_to, std::string("/mnt/cfa0:/") + link);
  constexpr std::pair<const char*, bool> kLocalNames[] = {
      {"cfa0:/l/x", false},  {"cfa0:/l/../x", false}, {"cfa0:/chain/", false}, {"cfa0:/file", false},
      {"cfa0:/new", false},  {"cfa0:/node", false},   {"cfa0:/up/x", false},   {"usba0:", false},
      {"cfa0:/other", true}, {"cfa0:/there", true},   {"cfa0:/x", true},       {"cfa0:", true},
      {"x", true},
  };
  for (const auto& [local, is_taken] : kLocalNames) {
    const ScriptedStdio stdio;
    TargetName target;
    ESH_RecordLocalFile(local);
    EXPECT_FALSE(GetFullLocalName(local, "a/b.cfg", target));
    EXPECT_EQ(CheckTarget("tftp", target), is_taken ? Refusal() : ESH_ERR_FAIL) << local;
  }
  EXPECT_EQ(umount("/mnt/cfa0:/node"), 0);
}

}  // namespace
