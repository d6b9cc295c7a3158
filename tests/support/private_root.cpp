#include "tests/support/private_root.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "device/board/namespaces.h"
#include "util/unique_handle.h"

namespace {

namespace fs = std::filesystem;

/// Directories that are the test's own. The new root is put together in the machine's own /mnt, which always exists.
constexpr const char* kOwnDirectories[] = {"/mnt", "/etc", "/tmp", "/lib", "/lib/modules", "/proc/net", "/proc/sys"};
/// Those that show what the machine has there, but for the test's own.
constexpr const char* kMirrored[] = {"/", "/lib", "/proc"};
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

/// Shows the machine's files, which nobody can change there: a link that leads to them is no way out.
std::string ShowMachine(const std::string& target) {
  std::string problem = device::BindMount("/", target);
  mount_attr unchangeable{};
  unchangeable.attr_set = MOUNT_ATTR_RDONLY;
  if (problem.empty() &&
      mount_setattr(AT_FDCWD, target.c_str(), AT_RECURSIVE, &unchangeable, sizeof(unchangeable)) != 0 &&
      errno != ENOSYS)  // callgrind does not know it
    problem = "cannot protect the machine's files";
  return problem;
}

void Mirror(const fs::path& directory) {
  for (const fs::directory_entry& entry : fs::directory_iterator(kMachine + directory.string())) {
    const fs::path shown = directory / entry.path().filename();
    if (!fs::exists(fs::symlink_status(shown))) fs::create_symlink(entry.path(), shown);
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
  if (problem.empty()) problem = ShowMachine(std::string("/mnt") + kMachine);
  if (problem.empty() && (chroot("/mnt") != 0 || chdir("/") != 0)) problem = "cannot change the root directory";
  if (!problem.empty()) return problem;
  for (const char* directory : kOwnDirectories) fs::create_directories(directory);
  for (const char* directory : kMirrored) Mirror(directory);
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
  if (fs::is_symlink(path)) fs::remove(path);  // the machine's file of that name
  EXPECT_TRUE(std::ofstream(path, std::ios::binary) << text << std::flush) << path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void AddMedium(const std::string& device) {
  fs::create_directories("/mnt/" + device);
  fs::create_symlink("/mnt/" + device, "/mnt/slot0#" + device);
}
