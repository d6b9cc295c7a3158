#include "device/board/lab_servers.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <fstream>

#include "device/board/command_server.h"
#include "device/board/host_program.h"
#include "device/board/package_root.h"
#include "util/unique_handle.h"

namespace device {
namespace {

constexpr char kLabFiles[] = ESH_DEVICE_FILES "/lab";
constexpr char kSamples[] = ESH_DEVICE_PACKAGES "/lab";
constexpr char kPackages[] = "lab";

/// System calls by which a server becomes somebody else before it serves.
constexpr std::array kIdentityCalls{SYS_setgroups, SYS_setuid,    SYS_setgid,   SYS_setreuid, SYS_setregid,
                                    SYS_setresuid, SYS_setresgid, SYS_setfsuid, SYS_setfsgid};

/// @return whether this user namespace holds one user only, as that of an ordinary user does.
bool HasOneIdentity() {
  std::ifstream map("/proc/self/uid_map");
  unsigned long first = 0;
  unsigned long outside = 0;
  unsigned long count = 0;
  return static_cast<bool>(map >> first >> outside >> count) && count == 1;
}

/// Has the kernel answer "done" when this process or its children want to become somebody else, and do nothing: where
/// nobody else exists, servers would refuse to serve otherwise.
bool PretendIdentities() {
  std::array<sock_filter, kIdentityCalls.size() + 3> filter{};
  auto* next = filter.data();
  *next++ = BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
  for (std::size_t i = 0; i < kIdentityCalls.size(); ++i) {
    const auto to_answer = static_cast<unsigned char>(kIdentityCalls.size() - i);  // instructions in between
    *next++ = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(kIdentityCalls.at(i)), to_answer, 0);
  }
  *next++ = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
  *next = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO);  // with error number 0
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace

std::string StartLabServers(const BootOptions& options, const std::string& place,
                            const std::vector<std::string>& environment) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return "lab: no servers: no pipe\n";
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  const pid_t process = fork();
  if (process == 0) {
    setsid();
    if (HasOneIdentity()) (void)PretendIdentities();  // the servers tell when it did not help
    const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
    ExecuteProgram({FindProgram("busybox"), "sh", kLabFiles + std::string("/servers.sh"), PackageRoot(kPackages), place,
                    options.lab_directory, kSamples},
                   environment, {null.Get(), writing.Get(), null.Get()});
  }
  writing.Reset();
  return process < 0 ? "lab: no servers: no process\n" : ReadToEnd(reading.Get());
}

std::vector<std::string> NeededByLabServers(const BootOptions& options) {
  return {kLabFiles, kSamples, PackageRoot(kPackages), options.lab_directory};
}

}  // namespace device
