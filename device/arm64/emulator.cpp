#include "device/arm64/emulator.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <vector>

#include "device/board/process.h"

namespace device {
namespace {

constexpr char kMegabytes[] = "512";
constexpr char kPortAddress[] = "02:5a:c1:07:f2:0e";  // that of a native device's port, see lab/connect.sh
constexpr char kCarrier[] = ESH_DEVICE_FILES "/lab/carry.sh";
/// Messages of the kernel would stand between those of the shell; one that cannot go on restarts. To move the kernel
/// about in memory and to test its ciphers takes a sixth of the time of a boot, and is of no use here.
constexpr char kKernelLine[] = "console=ttyAMA0 quiet loglevel=1 panic=-1 nokaslr cryptomgr.notests";
/// Events are only told to somebody who has said this.
constexpr std::string_view kMonitorGreeting = "{\"execute\":\"qmp_capabilities\"}\n";

bool HasArmHardware() {
#ifdef __aarch64__
  return access("/dev/kvm", R_OK | W_OK) == 0;
#else
  return false;
#endif
}

/// In the emulator's options a comma is written twice.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char character : text) escaped.append(character == ',' ? 2 : 1, character);
  return escaped;
}

/// The emulator's ends of the lines, by the numbers that its options name.
enum Line : int { kSerial = 3, kCommands, kEvents, kMonitor, kNetwork, kLineEnd };

std::string SocketLine(const std::string& name, Line number) {
  return "socket,id=" + name + ",fd=" + std::to_string(number);
}

std::vector<std::string> EmulatorWords(const MachineParts& parts) {
  std::vector<std::string> words{"qemu-system-aarch64"};
  const auto add = [&words](std::initializer_list<std::string> more) { words.insert(words.end(), more); };
  add({"-nodefaults", "-no-user-config", "-display", "none", "-no-reboot"});
  if (HasArmHardware())
    add({"-M", "virt,gic-version=host", "-cpu", "host", "-accel", "kvm"});
  else
    add({"-M", "virt", "-cpu", "cortex-a57", "-accel", "tcg"});
  add({"-smp", "1", "-m", kMegabytes, "-kernel", parts.kernel, "-initrd", parts.directory + "/first-root.cpio",
       "-append", kKernelLine});
  add({"-chardev",
       "serial,id=serial,path=/proc/self/fd/" + std::to_string(kSerial) +
           ",logfile=" + Escaped(parts.directory + "/console.log"),
       "-serial", "chardev:serial"});
  add({"-chardev", SocketLine("monitor", kMonitor), "-mon", "chardev=monitor,mode=control"});
  add({"-device", "virtio-serial-device"});
  add({"-chardev", SocketLine("commands", kCommands), "-device", "virtserialport,chardev=commands,nr=1"});
  add({"-chardev", SocketLine("events", kEvents), "-device", "virtserialport,chardev=events,nr=2"});
  for (std::size_t i = 0; i < parts.disks.size(); ++i) {
    const std::string name = "disk" + std::to_string(i);
    add({"-drive", "if=none,format=raw,cache=unsafe,id=" + name + ",file=" + Escaped(parts.disks[i].image), "-device",
         "virtio-blk-device,drive=" + name + ",serial=" + Escaped(parts.disks[i].serial_number)});
  }
  add({"-netdev", "dgram,id=port,local.type=fd,local.str=" + std::to_string(kNetwork), "-device",
       std::string("virtio-net-device,netdev=port,mac=") + kPortAddress});
  return words;
}

bool MakeLine(int type, UniqueFd& own, UniqueFd& other) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  own.Reset(ends[0]);
  other.Reset(ends[1]);
  return true;
}

}  // namespace

pid_t StartEmulator(const MachineParts& parts, MachineLines& lines) {
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  const UniqueFd log(open((parts.directory + "/emulator.log").c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  UniqueFd port;
  std::array<UniqueFd, kLineEnd> others;
  if (!MakeLine(SOCK_STREAM, lines.commands, others[kCommands]) ||
      !MakeLine(SOCK_STREAM, lines.events, others[kEvents]) ||
      !MakeLine(SOCK_STREAM, lines.monitor, others[kMonitor]) || !MakeLine(SOCK_DGRAM, port, others[kNetwork]))
    return -1;
  (void)!write(lines.monitor.Get(), kMonitorGreeting.data(), kMonitorGreeting.size());

  if (fork() == 0) ExecuteProgram({"busybox", "sh", kCarrier}, {}, {null.Get(), log.Get(), log.Get(), port.Get()});
  const pid_t process = fork();
  if (process != 0) return process;
  DieWithParent();
  if (unshare(CLONE_NEWNET) != 0) _exit(1);
  ExecuteProgram(EmulatorWords(parts), {},
                 {null.Get(), log.Get(), log.Get(), lines.serial.Get(), others[kCommands].Get(), others[kEvents].Get(),
                  others[kMonitor].Get(), others[kNetwork].Get()});
}

std::string CableCommand(bool is_plugged_in) {
  return std::string("{\"execute\":\"set_link\",\"arguments\":{\"name\":\"port\",\"up\":") +
         (is_plugged_in ? "true" : "false") + "}}\n";
}

}  // namespace device
