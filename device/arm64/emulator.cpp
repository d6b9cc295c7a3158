#include "device/arm64/emulator.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string_view>

#include "device/board/command_server.h"
#include "device/board/host_program.h"
#include "device/board/namespaces.h"

namespace device {
namespace {

constexpr char kMegabytes[] = "512";
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

std::string TextOf(const LabCable::Address& address) {
  std::array<char, 18> text{};
  (void)std::snprintf(text.data(), text.size(), "%02x:%02x:%02x:%02x:%02x:%02x", address[0], address[1], address[2],
                      address[3], address[4], address[5]);
  return text.data();
}

/// The emulator's ends of the lines, by the numbers that its options name.
enum Line : int { kSerial = 3, kGuest, kMonitor, kNetwork, kLineEnd };

std::string SocketLine(const char* name, Line number) {
  return std::string("socket,id=") + name + ",fd=" + std::to_string(number);
}

std::string FrameLine(const char* name, Line number) {
  return std::string("dgram,id=") + name + ",local.type=fd,local.str=" + std::to_string(number);
}

std::vector<std::string> EmulatorWords(const MachineParts& parts) {
  std::vector<std::string> words{FindEmulator()};
  const auto add = [&words](std::initializer_list<std::string> more) { words.insert(words.end(), more); };
  add({"-nodefaults", "-no-user-config", "-display", "none", "-no-reboot"});
  if (HasArmHardware())
    add({"-M", "virt,gic-version=host", "-cpu", "host", "-accel", "kvm"});
  else
    add({"-M", "virt", "-cpu", "cortex-a57", "-accel", "tcg"});
  add({"-smp", "1", "-m", kMegabytes, "-kernel", parts.kernel, "-initrd", parts.first_root, "-append", kKernelLine});
  add({"-chardev", SocketLine("serial", kSerial), "-serial", "chardev:serial"});
  add({"-chardev", SocketLine("monitor", kMonitor), "-mon", "chardev=monitor,mode=control"});
  add({"-chardev", SocketLine("guest", kGuest), "-device", "virtio-serial-device", "-device",
       "virtserialport,chardev=guest,name=guest"});
  for (std::size_t i = 0; i < parts.disks.size(); ++i) {
    const std::string name = "disk" + std::to_string(i);
    add({"-drive", "if=none,format=raw,cache=unsafe,id=" + name + ",file=" + Escaped(parts.disks[i].image), "-device",
         "virtio-blk-device,drive=" + name + ",serial=" + Escaped(parts.disks[i].serial_number)});
  }
  add({"-netdev", FrameLine("port", kNetwork), "-device",
       "virtio-net-device,netdev=port,mac=" + TextOf(parts.port_address)});
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

std::string FindEmulator() { return FindProgram("qemu-system-aarch64"); }

pid_t StartEmulator(const MachineParts& parts, MachineLines& lines, int log) {
  std::array<UniqueFd, kLineEnd - kSerial> others;
  if (!MakeLine(SOCK_STREAM, lines.serial, others[0]) ||
      !MakeLine(SOCK_STREAM, lines.guest, others[kGuest - kSerial]) ||
      !MakeLine(SOCK_STREAM, lines.monitor, others[kMonitor - kSerial]) ||
      !MakeLine(SOCK_DGRAM, lines.network, others[kNetwork - kSerial]))
    return -1;
  (void)!write(lines.monitor.Get(), kMonitorGreeting.data(), kMonitorGreeting.size());

  const pid_t process = fork();
  if (process != 0) return process;
  DieWithParent();
  if (unshare(CLONE_NEWNET) != 0) _exit(1);
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  std::vector<int> descriptors{null.Get(), log, log};
  for (const UniqueFd& other : others) descriptors.push_back(other.Get());
  ExecuteProgram(EmulatorWords(parts), {"PATH=/usr/bin:/bin"}, descriptors);
}

std::string CableCommand(bool is_plugged_in) {
  return std::string("{\"execute\":\"set_link\",\"arguments\":{\"name\":\"port\",\"up\":") +
         (is_plugged_in ? "true" : "false") + "}}\n";
}

MachineEnd MonitorTells(const std::string& received) {
  if (received.find("\"reason\": \"guest-reset\"") != std::string::npos) return MachineEnd::kRestart;
  if (received.find("\"reason\": \"guest-shutdown\"") != std::string::npos) return MachineEnd::kPowerOff;
  return MachineEnd::kNone;
}

}  // namespace device
