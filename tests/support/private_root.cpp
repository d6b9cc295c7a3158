#include "tests/support/private_root.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "device/board/namespaces.h"
#include "util/unique_handle.h"

namespace {

namespace fs = std::filesystem;

/// Directories that are the test's own. The new root is put together in the machine's own /mnt, which always exists.
constexpr const char* kOwnDirectories[] = {"/mnt", "/etc", "/tmp", "/lib/modules", "/proc/net", "/proc/sys"};
constexpr const char* kOwnFiles[] = {"/proc/modules", "/sbin/scmd"};
/// Directories that hold some of these, and otherwise show what the machine has there.
constexpr const char* kMirrored[] = {"/", "/lib", "/proc", "/sbin"};
constexpr char kMachine[] = "/host";  // where the new root keeps the machine's

std::string EnterNamespaces() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  std::string problem;
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0)
    problem = device::MapOneIdentity(getpid(), user, group);
  else if (user != 0 || unshare(CLONE_NEWNS) != 0)  // root can do without a user namespace where there are none
    problem = device::Forbidden("make a mount namespace");
  return problem.empty() ? device::PartMounts() : problem;
}

template <std::size_t kCount>
bool IsOneOf(const char* const (&paths)[kCount], const std::string& path) {
  return std::find(std::begin(paths), std::end(paths), path) != std::end(paths);
}

void Mirror(const fs::path& directory) {
  fs::create_directories(directory);
  for (const fs::directory_entry& entry : fs::directory_iterator(kMachine + directory.string())) {
    const fs::path shown = directory / entry.path().filename();
    if (!IsOneOf(kOwnDirectories, shown) && !IsOneOf(kOwnFiles, shown) && !IsOneOf(kMirrored, shown))
      fs::create_symlink(kMachine + shown.string(), shown);
  }
}

}  // namespace

std::string EnterPrivateRoot() {
  static const std::string forbidden = EnterNamespaces();
  if (!forbidden.empty()) return forbidden;
  static const UniqueFd machine(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (fchdir(machine.Get()) != 0 || chroot(".") != 0) return "cannot go back to the machine's root directory";
  umount2("/mnt", MNT_DETACH);  // the root of the test before
  std::string problem = device::Mount("tmpfs", "/mnt", "tmpfs", 0, "mode=0755");
  if (problem.empty()) problem = device::BindMount("/", std::string("/mnt") + kMachine);
  if (problem.empty() && (chroot("/mnt") != 0 || chdir("/") != 0)) problem = "cannot change the root directory";
  if (!problem.empty()) return problem;
  for (const char* directory : kMirrored) Mirror(directory);
  for (const char* directory : kOwnDirectories) fs::create_directories(directory);
  return "";
}

PrivateRootTest::PrivateRootTest() {
  const auto enter = [] {
    if (const char* reason = WhyNoNamespaces()) GTEST_SKIP() << reason;
    ASSERT_EQ(EnterPrivateRoot(), "");
  };
  enter();
}

const char* WhyNoNamespaces() { return std::getenv("ESH_NO_NAMESPACES"); }

void WriteFile(const std::string& path, const std::string& text) {
  fs::create_directories(fs::path(path).parent_path());
  EXPECT_TRUE(std::ofstream(path, std::ios::binary) << text << std::flush) << path;
}

std::string ReadFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

void AddMedium(const std::string& device) {
  fs::create_directories("/mnt/" + device);
  fs::create_symlink("/mnt/" + device, "/mnt/slot0#" + device);
}
