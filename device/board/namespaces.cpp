#include "device/board/namespaces.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>

#include "util/unique_handle.h"

namespace device {
namespace {

constexpr unsigned long kMaxIdentities = 65536;

bool WriteOnce(const std::string& path, const std::string& text) {
  const UniqueFd file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  return file && write(file.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// How many ids from 0 on this process may pass on, by its own map ("first outside count" in each line).
unsigned long OwnIdentities(const char* map) {
  std::ifstream lines(map);
  unsigned long first = 0;
  unsigned long outside = 0;
  unsigned long count = 0;
  while (lines >> first >> outside >> count) {
    if (first == 0) return std::min(count, kMaxIdentities);
  }
  return 1;
}

}  // namespace

std::string LeaveHost() {
  constexpr int kOwn = CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC;
  if (unshare(kOwn) == 0) return "";
  const int reason = errno;
  return std::string("this machine does not allow namespaces for a user of its own (") + std::strerror(reason) +
         "); look at kernel.unprivileged_userns_clone, user.max_user_namespaces and the container's restrictions";
}

std::string MapIdentities(pid_t process) {
  const std::string directory = "/proc/" + std::to_string(process);
  const bool is_root = geteuid() == 0;
  if (!is_root && !WriteOnce(directory + "/setgroups", "deny")) return "cannot write " + directory + "/setgroups";

  const std::string users =
      is_root ? "0 0 " + std::to_string(OwnIdentities("/proc/self/uid_map")) : "0 " + std::to_string(geteuid()) + " 1";
  const std::string groups =
      is_root ? "0 0 " + std::to_string(OwnIdentities("/proc/self/gid_map")) : "0 " + std::to_string(getegid()) + " 1";
  if (WriteOnce(directory + "/uid_map", users) && WriteOnce(directory + "/gid_map", groups)) return "";
  return std::string("cannot map the users of a user namespace: ") + std::strerror(errno);
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
  if (S_ISDIR(status.st_mode)) {
    (void)mkdir(target.c_str(), 0755);  // it may stand there already; the mount tells
  } else {
    const UniqueFd file(open(target.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  }
  return Mount(source, target, nullptr, MS_BIND | MS_REC);
}

void DieWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }

}  // namespace device
