#include "tests/support/private_root.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "device/board/namespaces.h"

namespace {

namespace fs = std::filesystem;

/// Directories that are the test's own. The new root is put together in the machine's own /mnt, which always exists.
constexpr const char* kOwnDirectories[] = {"/mnt", "/etc", "/tmp", "/lib/modules", "/proc/net", "/proc/sys"};
constexpr const char* kOwnFiles[] = {"/proc/modules", "/sbin/scmd"};
/// Directories that hold some of these, and otherwise show what the machine has there.
constexpr const char* kMirrored[] = {"/", "/lib", "/proc", "/sbin"};
constexpr char kSite[] = "/mnt";
constexpr char kMachine[] = "/host";  // where the new root keeps the machine's

std::string Failure(const std::string& step) { return "no private root: " + step + ": " + std::strerror(errno); }

std::string EnterNamespaces() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) return device::MapOneIdentity(getpid(), user, group);
  // Root can do without a user namespace where there are none.
  return user == 0 && unshare(CLONE_NEWNS) == 0 ? "" : device::Forbidden("make a mount namespace");
}

std::string ChangeRoot() {
  const std::string machine = std::string(kSite) + kMachine;
  if (std::string problem = device::PartMounts(); !problem.empty()) return problem;
  if (mount("tmpfs", kSite, "tmpfs", 0, "mode=0755") != 0) return Failure("cannot mount a file system in memory");
  if (mkdir(machine.c_str(), 0755) != 0 || mount("/", machine.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0 ||
      chroot(kSite) != 0 || chdir("/") != 0)
    return Failure("cannot change the root directory");
  return "";
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

void EmptyOwnPlaces() {
  for (const char* file : kOwnFiles) fs::remove(file);
  for (const fs::path directory : kOwnDirectories) {
    fs::create_directories(directory);
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
      umount2(entry.path().c_str(), MNT_DETACH);
      fs::remove_all(entry.path());
    }
  }
}

}  // namespace

std::string EnterPrivateRoot() {
  static bool entered = false;
  if (!entered) {
    std::string failure = EnterNamespaces();
    failure = failure.empty() ? ChangeRoot() : failure;
    if (!failure.empty()) return failure;
    for (const char* directory : kMirrored) Mirror(directory);
    entered = true;
  }
  if (chdir("/") != 0) return Failure("cannot go to the root directory");
  EmptyOwnPlaces();
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
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  EXPECT_TRUE(file) << path;
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
