#include "device/board/namespaces.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fstream>

#include "util/unique_handle.h"

namespace device {
namespace {

constexpr unsigned long kMaxIdentities = 65536;

constexpr char kForbidden[] = "this machine does not let us ";

bool WriteOnce(const std::string& path, const std::string& text) {
  const UniqueFd file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  return file && write(file.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// Maps as many users and groups, from 0 on, to those from the given ones on.
bool WriteMaps(pid_t process, uid_t user, gid_t group, unsigned long users, unsigned long groups) {
  const std::string directory = "/proc/" + std::to_string(process);
  return WriteOnce(directory + "/uid_map", "0 " + std::to_string(user) + " " + std::to_string(users)) &&
         WriteOnce(directory + "/gid_map", "0 " + std::to_string(group) + " " + std::to_string(groups));
}

/// How many ids from 0 on this process may pass on, by its own map ("first outside count" in each line).
unsigned long OwnIdentities(const char* map) {
  std::ifstream lines(map);
  unsigned long first = 0;
  unsigned long outside = 0;
  unsigned long count = 0;
  while (lines >> first >> outside >> count)
    if (first == 0) return std::min(count, kMaxIdentities);
  return 1;
}

}  // namespace

pid_t ForkApart(bool with_users) {
  constexpr int kOwn = CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC | SIGCHLD;
  const int how = with_users ? kOwn | CLONE_NEWUSER : kOwn;
  return static_cast<pid_t>(syscall(SYS_clone, how, nullptr, nullptr, nullptr, nullptr));
}

std::string Forbidden(const std::string& what) {
  return kForbidden + what + " (" + std::strerror(errno) +
         "); root needs CAP_SYS_ADMIN and CAP_NET_ADMIN, anybody else user namespaces: kernel.unprivileged_userns_clone"
         " 1, user.max_user_namespaces above 0, kernel.apparmor_restrict_unprivileged_userns 0";
}

bool TellsOfForbidding(const std::string& problem) {
  return problem.starts_with(kForbidden) || problem.ends_with(std::strerror(EPERM));
}

std::string MapIdentities(pid_t process) {
  const unsigned long users = OwnIdentities("/proc/self/uid_map");
  const unsigned long groups = OwnIdentities("/proc/self/gid_map");
  if (geteuid() == 0 && WriteMaps(process, 0, 0, users, groups)) return "";
  return MapOneIdentity(process, geteuid(), getegid());
}

std::string MapOneIdentity(pid_t process, uid_t user, gid_t group) {
  const bool denied = WriteOnce("/proc/" + std::to_string(process) + "/setgroups", "deny");
  return denied && WriteMaps(process, user, group, 1, 1) ? "" : Forbidden("map the users of a user namespace");
}

std::string PartMounts() {
  constexpr unsigned long kApart = MS_PRIVATE | MS_REC;
  if (mount(nullptr, "/", nullptr, kApart, nullptr) == 0) return "";
  // The root of a chroot may be no mount. Entering a mount namespace, even one's own, leads to its real root; from
  // there the directory is made one.
  const UniqueFd root(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
  const UniqueFd own(open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC));
  std::array<char, PATH_MAX> place{};
  if (setns(own.Get(), CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, kApart, nullptr) == 0 &&
      fchdir(root.Get()) == 0 && getcwd(place.data(), place.size()) != nullptr &&
      mount(place.data(), place.data(), nullptr, MS_BIND | MS_REC, nullptr) == 0 && chroot(place.data()) == 0 &&
      chdir("/") == 0)
    return "";
  return Forbidden("part from its mounts");
}

std::string Mount(const std::string& source, const std::string& target, const char* type, unsigned long flags,
                  const std::string& data) {
  if (mount(source.c_str(), target.c_str(), type, flags, data.c_str()) == 0) return "";
  const int reason = errno;
  return "cannot mount " + (type == nullptr ? source : std::string(type)) + " on " + target + ": " +
         std::strerror(reason);
}

std::string BindMount(const std::string& source, const std::string& target) {
  struct stat status {};
  if (stat(source.c_str(), &status) != 0) return source + " is missing";
  if (S_ISDIR(status.st_mode))
    (void)mkdir(target.c_str(), 0755);  // it may stand there already; the mount tells
  else
    const UniqueFd file(open(target.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  return Mount(source, target, nullptr, MS_BIND | MS_REC);
}

}  // namespace device
