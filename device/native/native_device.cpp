#include <fcntl.h>
#include <linux/filter.h>
#include <linux/reboot.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "device/board/board.h"
#include "device/board/command_server.h"
#include "device/board/namespaces.h"
#include "device/board/process.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {
namespace {

constexpr char kHostName[] = "device";
constexpr char kConsole[] = "/dev/pts/0";
constexpr const char* kHostNodes[] = {"null", "zero", "full", "random", "urandom", "tty"};
/// Entries of the kernel's own /proc that the device's /proc shows by links; modules and sys are the device's own.
constexpr const char* kKernelEntries[] = {"cmdline", "cpuinfo",     "devices", "filesystems", "loadavg",
                                          "meminfo", "mounts",      "net",     "self",        "stat",
                                          "swaps",   "thread-self", "uptime",  "version",     "vmstat"};
/// Process numbers that /proc shows. A device that outlives them still runs; its tools just see no newer processes.
constexpr int kShownProcesses = 1024;

std::string MountDev(const std::string& root) {
  for (const char* node : kHostNodes) {
    const std::string place = root + "/dev/" + node;
    if (std::string problem = BindMount(std::string("/dev/") + node, place); !problem.empty()) return problem;
    // It can still be written to. But the shell changes the mode of what it takes for its console, and this is the
    // host's.
    mount_attr read_only{};
    read_only.attr_set = MOUNT_ATTR_RDONLY;
    if (mount_setattr(AT_FDCWD, place.c_str(), 0, &read_only, sizeof(read_only)) != 0)
      return "cannot protect " + place + ": " + std::strerror(errno);
  }
  // A devpts of its own, so that the console is number 0 whatever terminals the host has open.
  if (std::string problem =
          Mount("devpts", root + "/dev/pts", "devpts", MS_NOSUID | MS_NOEXEC, "newinstance,ptmxmode=0666,mode=0600");
      !problem.empty())
    return problem;
  (void)symlink("pts/ptmx", (root + "/dev/ptmx").c_str());
  (void)symlink("/proc/self/fd", (root + "/dev/fd").c_str());
  return "";
}

/// The kernel's /proc cannot get a file of ours (a kernel without modules has no /proc/modules), so the device's
/// /proc is a plain directory with links into the kernel's, which is mounted inside it.
std::string MountProc(const std::string& root) {
  const std::string proc = root + "/proc/";
  (void)mkdir((proc + ".kernel").c_str(), 0755);
  if (std::string problem = Mount("proc", proc + ".kernel", "proc"); !problem.empty()) return problem;
  for (const char* entry : kKernelEntries)
    (void)symlink((std::string(".kernel/") + entry).c_str(), (proc + entry).c_str());
  for (int number = 1; number <= kShownProcesses; ++number) {
    const std::string name = std::to_string(number);
    (void)symlink((".kernel/" + name).c_str(), (proc + name).c_str());
  }
  // The settings of the device's own network are real.
  (void)symlink("../.kernel/sys/net", (proc + "sys/net").c_str());
  return "";
}

/// Shows the device's interfaces in /sys. Where the host forbids it, insmod makes plain files there instead.
void MountSys(const std::string& root) {
  const std::string kernel = root + "/sys/.kernel";
  (void)mkdir(kernel.c_str(), 0755);
  (void)mkdir((root + "/sys/class").c_str(), 0755);
  if (Mount("sysfs", kernel, "sysfs").empty()) {
    (void)symlink("../.kernel/class/net", (root + "/sys/class/net").c_str());
    return;
  }
  (void)rmdir(kernel.c_str());
  (void)mkdir((root + "/sys/class/net").c_str(), 0755);
}

std::string EnterRoot(const std::string& root) {
  // The old root ends up on top of the new one and goes from there.
  if (chdir(root.c_str()) == 0 && syscall(SYS_pivot_root, ".", ".") == 0 && umount2(".", MNT_DETACH) == 0 &&
      chdir("/") == 0)
    return "";
  return std::string("cannot enter the device's root file system: ") + std::strerror(errno);
}

/// A device node of the image cannot be made where an ordinary user runs the device, which has others.
std::string UnpackImage(const BootOptions& options, const std::string& root) {
  const std::string archive = root + "/image.cpio";
  if (std::string problem = MakeImage(options, {"native", "", {{ESH_DEVICE_UN7Z, kUn7zPath}}}, archive);
      !problem.empty())
    return problem;
  std::string said;
  const std::string unpack = "cd " + ShellQuoted(root) + " && busybox cpio -i < image.cpio && rm image.cpio";
  return RunProgram({"sh", "-c", unpack}, said) ? "" : "cannot unpack the device's boot image: " + said;
}

std::string SetUpDevice(const BootOptions& options, const PowerSupply& supply) {
  const std::string& root = supply.empty_directory;
  if (unshare(CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC) != 0)
    return std::string("cannot make the device's namespaces: ") + std::strerror(errno);
  (void)sethostname(kHostName, std::strlen(kHostName));
  if (std::string problem = Mount("tmpfs", root, "tmpfs", MS_NOSUID, "mode=755"); !problem.empty()) return problem;
  if (std::string problem = UnpackImage(options, root); !problem.empty()) return problem;
  if (std::string problem = PlaceText(StartScript(options), root); !problem.empty()) return problem;
  if (std::string problem = MountDev(root); !problem.empty()) return problem;
  if (std::string problem = MountProc(root); !problem.empty()) return problem;
  MountSys(root);
  for (const Medium& medium : options.media) {
    const std::string source = supply.media_directory + "/" + medium.name;
    if (std::string problem = BindMount(source, root + "/dev/media/" + medium.name); !problem.empty()) return problem;
  }
  return EnterRoot(root);
}

/// Both ends of the console. The slave stays open in the first process, so that the console lives as long as it does;
/// it is nobody's controlling terminal before the shell takes it.
struct ConsoleEnds {
  UniqueFd master;
  UniqueFd slave;
};

std::string OpenConsole(const BootOptions& options, ConsoleEnds& console) {
  console.master.Reset(open("/dev/pts/ptmx", O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  int locked = 0;
  if (!console.master || ioctl(console.master.Get(), TIOCSPTLCK, &locked) != 0) return "cannot open the console";
  console.slave.Reset(open(kConsole, O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!console.slave) return std::string("cannot open ") + kConsole;
  const winsize window{options.rows, options.columns, 0, 0};
  ioctl(console.master.Get(), TIOCSWINSZ, &window);
  return "";
}

pid_t StartShell(const ConsoleEnds& console) {
  const pid_t process = fork();
  if (process != 0) return process;
  setpgid(0, 0);  // not a session of its own: whoever holds the console later must not get it as controlling terminal
  const int slave = console.slave.Get();
  ExecuteProgram({kStartShellPath}, {}, {slave, slave, slave});
}

/// A process that stays in the lab's network namespace, where insmod and rmmod fetch and leave the management port.
pid_t StartBus() {
  const pid_t process = fork();
  if (process != 0) return process;
  prctl(PR_SET_NAME, "bus");
  close_range(0, ~0U, 0);
  for (;;) pause();
}

/// The kernel ends a PID namespace some time after a process in it asked for a reboot, and lets that process go at
/// once: the shell would be back at its prompt in between. So the first process is asked, and who asks waits until the
/// end.
/// @return where it is asked; no descriptor where the machine does not offer this.
UniqueFd CatchReboots() {
  std::array filter{sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                    sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_reboot, 0, 1),
                    sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF),
                    sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{filter.size(), filter.data()};
  return UniqueFd(
      static_cast<int>(syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program)));
}

/// Ends the device as a process of it asked.
void GoDown(int reboots) {
  seccomp_notif request{};
  if (ioctl(reboots, SECCOMP_IOCTL_NOTIF_RECV, &request) != 0) return;  // who asked is gone
  kill(-1, SIGKILL);  // or the call would return when this process closes what it was asked by
  _exit(request.data.args[2] == LINUX_REBOOT_CMD_RESTART ? kDeviceRestarted : kDevicePoweredOff);
}

/// Makes the root file system, opens the console, starts the shell, and serves the launcher.
[[noreturn]] void RunFirstProcess(const BootOptions& options, PowerSupply supply) {
  umask(0);
  const pid_t bus = StartBus();
  if (std::string problem = SetUpDevice(options, supply); !problem.empty()) GiveUp(supply.channel, problem);
  ConsoleEnds console;
  if (std::string problem = OpenConsole(options, console); !problem.empty()) GiveUp(supply.channel, problem);
  // insmod and rmmod look here for the process to borrow the lab's network namespace from.
  const UniqueFd note(open("/run/bus.pid", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  if (dprintf(note.Get(), "%d\n", bus) < 0) GiveUp(supply.channel, "cannot write /run/bus.pid");

  umask(022);
  const int master = console.master.Get();
  supply.channel.Send(MessageKind::kConsole, 0, 0, "", {&master, 1});
  console.master.Reset();  // the launcher holds the only one
  supply.channel.Send(MessageKind::kShellStarts);
  const UniqueFd reboots = CatchReboots();
  pid_t shell = -1;
  CommandServer server(supply.channel, {"PATH=/bin:/sbin", "HOME=/root", "USER=root"},
                       {[&](pid_t process, int status) {
                          if (process == shell) supply.channel.Send(MessageKind::kShellEnded, 0, ExitStatusOf(status));
                        },
                        [](Message&) {}});
  shell = StartShell(console);
  for (;;)
    if (server.ServeOnce(reboots.Get())) GoDown(reboots.Get());
}

class NativeKind final : public DeviceKind {
 public:
  /// A file system in memory whose size is limited. Links on it are not followed, as on every medium that may come from
  /// anywhere; whatever the first process mounts of it takes that over.
  std::string MakeMedium(const Medium& medium, const std::string& place) const override {
    (void)mkdir(place.c_str(), 0755);
    const std::string size = "mode=755,size=" + std::to_string(medium.bytes);
    constexpr unsigned long kFlags = MS_NOSUID | MS_NODEV | MS_NOSYMFOLLOW;
    std::string problem = Mount(medium.name, place, "tmpfs", kFlags, size);
    return problem.empty() && !medium.contents.empty() ? CopyContents(medium, place) : problem;
  }

  /// What is open stays usable, as memory does; by name nothing is found any more.
  std::string PullCommand(const std::string& medium) const override {
    return "umount -l " + ShellQuoted("/mnt/" + medium);
  }

  [[noreturn]] void RunFirstProcess(const BootOptions& options, PowerSupply supply) const override {
    ::device::RunFirstProcess(options, std::move(supply));
  }

  /// A boot takes a small part of a second.
  std::chrono::milliseconds BootTime() const override { return std::chrono::milliseconds(20000); }
};

}  // namespace

std::unique_ptr<Device> MakeNativeDevice(BootOptions options) {
  return MakeBoardDevice(std::make_unique<NativeKind>(), std::move(options));
}

}  // namespace device
