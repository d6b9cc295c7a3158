#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "device/board/board.h"
#include "device/board/namespaces.h"
#include "device/board/process.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {
namespace {

namespace fs = std::filesystem;

/// @return the place of what preset arm64 builds.
std::string Built(const std::string& name) { return std::string(ESH_ARM64_BUILD "/") + name; }

/// Makes the archive that the kernel unpacks: the boot image, and behind it a second archive of what the machine needs
/// to serve the host.
std::string MakeFirstRoot(const BootOptions& options, const KindFiles& files, const PowerSupply& supply) {
  const std::string archive = supply.empty_directory + "/first-root.cpio";
  if (std::string problem = MakeImage(options, files, archive); !problem.empty()) return problem;
  const std::string root = supply.empty_directory + "/root";
  std::error_code copied;
  fs::copy(ESH_DEVICE_FILES "/arm64/machine-root", root, fs::copy_options::recursive, copied);
  if (copied) return "cannot copy the machine's own files: " + copied.message();
  if (std::string problem = PlaceText(StartScript(options), root); !problem.empty()) return problem;
  for (const Medium& medium : options.media) {
    if (medium.contents.empty()) continue;
    const std::string place = root + "/run/media/" + medium.name;  // where /init looks for what belongs on a new one
    fs::create_directories(place, copied);
    if (std::string problem = CopyContents(medium, place); !problem.empty()) return problem;
  }
  const std::string pack =
      "cd " + ShellQuoted(root) + " && find . | busybox cpio -o -H newc >> " + ShellQuoted(archive);
  std::string said;
  return RunProgram({"sh", "-c", pack}, said) ? "" : "cannot pack the machine's root file system: " + said;
}

/// The console's line: the operator's end, which never blocks, and the emulator's.
std::string OpenConsole(UniqueFd& operator_end, UniqueFd& line) {
  operator_end.Reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!operator_end || unlockpt(operator_end.Get()) != 0)
    return std::string("cannot open a pseudo terminal for the console: ") + std::strerror(errno);
  line.Reset(ioctl(operator_end.Get(), TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios modes{};
  if (!line || tcgetattr(line.Get(), &modes) != 0) return "cannot open the console's near end";
  cfmakeraw(&modes);
  return tcsetattr(line.Get(), TCSANOW, &modes) == 0 ? "" : "cannot make the console raw";
}

void SendAll(const UniqueFd& line, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = send(line.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno != EINTR) return;  // the machine is going down
    if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

/// This side's ends of what leads into an emulated machine; all but the console's are sockets.
struct MachineLines {
  UniqueFd serial;    ///< the console's line, a terminal, which the emulator opens again
  UniqueFd commands;  ///< to /sbin/serve-host
  UniqueFd events;    ///< from /init
  UniqueFd monitor;   ///< the emulator's own, in QMP
};

bool MakeLine(int type, UniqueFd& own, UniqueFd& other) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  own.Reset(ends[0]);
  other.Reset(ends[1]);
  return true;
}

/// Starts the emulator in the lab's network, which its port is plugged in at. Its own messages go to emulator.log.
/// @param words  the script and its arguments.
/// @param lines  holds the console's line; receives the others.
/// @return the emulator's process, -1 when it could not be started.
pid_t StartEmulator(const std::vector<std::string>& words, const std::string& directory, MachineLines& lines) {
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  const UniqueFd log(open((directory + "/emulator.log").c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  UniqueFd commands;
  UniqueFd events;
  UniqueFd monitor;
  UniqueFd port;
  UniqueFd lab;
  if (!MakeLine(SOCK_STREAM, lines.commands, commands) || !MakeLine(SOCK_STREAM, lines.events, events) ||
      !MakeLine(SOCK_STREAM, lines.monitor, monitor) || !MakeLine(SOCK_DGRAM, port, lab))
    return -1;
  SendAll(lines.monitor, "{\"execute\":\"qmp_capabilities\"}\n");  // events are only told to who has said this
  const pid_t process = fork();
  if (process != 0) return process;
  ExecuteProgram(words, {},
                 {null.Get(), log.Get(), log.Get(), lines.serial.Get(), commands.Get(), events.Get(), monitor.Get(),
                  port.Get(), lab.Get()});
}

/// @return the line of an output that says best why a machine went down: the kernel's panic, or the last one.
std::string ReasonIn(std::string_view output) {
  while (output.ends_with('\n') || output.ends_with('\r')) output.remove_suffix(1);
  const std::size_t panic = output.find("Kernel panic");
  const std::size_t begin = panic != std::string_view::npos ? panic : output.find_last_of('\n') + 1;
  return std::string(output.substr(begin, output.find_first_of("\r\n", begin) - begin));
}

/// @return so many bytes, or those that come before the end.
std::string Take(const UniqueFd& line, std::size_t length) {
  std::string bytes(length, '\0');
  const ssize_t taken = length == 0 ? 0 : recv(line.Get(), bytes.data(), length, MSG_WAITALL);
  bytes.resize(taken > 0 ? static_cast<std::size_t>(taken) : 0);
  return bytes;
}

/// @return the numbers and words of the next line.
std::istringstream TakeLine(const UniqueFd& line) {
  std::string text;
  for (std::string byte; (byte = Take(line, 1)) != "\n" && !byte.empty();) text += byte;
  return std::istringstream(text);
}

/// The process that a machine is for the launcher: what is said to one is passed on to the other. The machine's part
/// is /init and /sbin/serve-host.
class Machine {
 public:
  Machine(Channel& channel, MachineLines lines) : channel_(channel), lines_(std::move(lines)) {}

  /// Passes on what happens until the emulator ends. @return whether the machine was ever up.
  bool ServeUntilDown(pid_t emulator, const UniqueFd& signals) {
    while (!HasEnded(emulator, signals)) {
      std::array<pollfd, 4> waiting{{{channel_.Descriptor(), POLLIN, 0},
                                     {signals.Get(), POLLIN, 0},
                                     {lines_.events.Get(), POLLIN, 0},
                                     {lines_.commands.Get(), POLLIN, 0}}};
      if (poll(waiting.data(), waiting.size(), -1) < 0) continue;
      if (waiting[2].revents != 0) PassEvent();
      if (waiting[3].revents != 0) PassAnswer();
      if (waiting[0].revents != 0) ListenToLauncher();
    }
    return is_up_;
  }

  /// @return how a machine that is down ended, as the exit status of a device's first process.
  [[nodiscard]] int End() const {
    std::array<char, 65536> said{};
    const ssize_t length = recv(lines_.monitor.Get(), said.data(), said.size(), MSG_DONTWAIT);
    const std::string_view events(said.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    if (events.find("\"reason\": \"guest-reset\"") != std::string_view::npos) return kDeviceRestarted;
    return events.find("\"reason\": \"guest-shutdown\"") != std::string_view::npos ? kDevicePoweredOff : 1;
  }

 private:
  static bool HasEnded(pid_t emulator, const UniqueFd& signals) {
    DrainSignals(signals);
    for (pid_t ended = 0; (ended = waitpid(-1, nullptr, WNOHANG)) > 0;)
      if (ended == emulator) return true;
    return false;
  }

  void PassEvent() {
    std::istringstream line = TakeLine(lines_.events);
    std::string event;
    int status = 0;
    line >> event >> status;
    if (event == "up") {
      is_up_ = true;
      channel_.Send(MessageKind::kShellStarts);
    }
    if (event == "handed-over") channel_.Send(MessageKind::kHandedOver);
    if (event == "shell-ended") channel_.Send(MessageKind::kShellEnded, 0, status);
  }

  void ListenToLauncher() {
    std::optional<Message> message = channel_.Receive(0);
    if (channel_.Closed()) _exit(0);  // the emulator ends with this process
    if (!message) return;
    if (message->kind == MessageKind::kKill) SendAll(lines_.commands, "kill\n");
    if (message->kind == MessageKind::kPlugCable)
      SendAll(lines_.monitor, std::string("{\"execute\":\"set_link\",\"arguments\":{\"name\":\"port\",\"up\":") +
                                  (message->value != 0 ? "true}}\n" : "false}}\n"));
    if (message->kind != MessageKind::kRun || message->descriptors.size() != 3) return;
    const std::string input = ContentsOf(message->descriptors[0]);
    SendAll(lines_.commands, "run " + std::to_string(message->id) + " " + std::to_string(message->text.size()) + " " +
                                 std::to_string(input.size()) + "\n" + message->text + input);
    command_ = std::move(*message);
  }

  /// What the machine says to a command that was killed comes when nobody waits for it any more.
  void PassAnswer() {
    std::uint32_t id = 0;
    int status = 0;
    std::array<std::size_t, 2> lengths{};
    if (!(TakeLine(lines_.commands) >> id >> status >> lengths[0] >> lengths[1])) return;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      const std::string bytes = Take(lines_.commands, lengths.at(i));
      if (id == command_.id) (void)!write(command_.descriptors[i + 1].Get(), bytes.data(), bytes.size());
    }
    channel_.Send(MessageKind::kCommandEnded, id, status);
  }

  Channel& channel_;
  MachineLines lines_;
  Message command_;  ///< the one that runs, or ran last
  bool is_up_ = false;
};

/// Makes the root file system, runs the emulator, and passes on what happens until it ends, or the channel.
[[noreturn]] void RunMachine(const BootOptions& options, const KindFiles& files, PowerSupply supply) {
  const UniqueFd signals = CatchSignals({SIGCHLD});
  // All that a boot needs is in memory that goes with the boot.
  if (unshare(CLONE_NEWNS) != 0) GiveUp(supply.channel, "cannot make the machine's mount namespace");
  std::string problem = Mount("tmpfs", supply.empty_directory, "tmpfs", MS_NOSUID, "mode=755");
  if (problem.empty()) problem = MakeFirstRoot(options, files, supply);
  MachineLines lines;
  UniqueFd operator_end;
  if (problem.empty()) problem = OpenConsole(operator_end, lines.serial);
  if (!problem.empty()) GiveUp(supply.channel, problem);
  const int given = operator_end.Get();

  const std::string& directory = supply.empty_directory;
  std::vector<std::string> words{ESH_DEVICE_FILES "/arm64/emulate.sh", files.system + "/boot/vmlinuz", directory};
  for (const Medium& medium : options.media)
    words.insert(words.end(), {supply.media_directory + "/" + medium.name, medium.name});
  const pid_t emulator = StartEmulator(words, directory, lines);
  if (emulator < 0) GiveUp(supply.channel, "cannot start the emulator");
  supply.channel.Send(MessageKind::kConsole, 0, 0, "", {&given, 1});
  operator_end.Reset();  // the launcher holds the only one

  Machine machine(supply.channel, std::move(lines));
  if (machine.ServeUntilDown(emulator, signals)) _exit(machine.End());
  std::string text = FileBytes(directory + "/console.log");
  if (text.empty()) text = FileBytes(directory + "/emulator.log");
  GiveUp(supply.channel, "the machine went down before it was up: " + ReasonIn(text));
}

class Arm64Kind final : public DeviceKind {
 public:
  std::string MakeMedium(const Medium& medium, const std::string& place) const override {
    const UniqueFd image(open(place.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (image && ftruncate(image.Get(), static_cast<off_t>(medium.bytes)) == 0) return "";
    return "cannot make " + medium.name + ": " + std::strerror(errno);
  }

  /// Parts the disk from its driver, as a plug that is drawn does. What is mounted stays so, and fails.
  std::string PullCommand(const std::string& medium) const override {
    return "for disk in /sys/block/vd*; do [ \"$(cat $disk/serial)\" = " + ShellQuoted(medium) +
           " ] || continue;"
           " link=$(readlink -f $disk/device); echo ${link##*/} > /sys/bus/virtio/drivers/virtio_blk/unbind; exit;"
           " done; exit 1";
  }

  [[noreturn]] void RunFirstProcess(const BootOptions& options, PowerSupply supply) const override {
    KindFiles files{"arm64", PackageRoot("arm64"), {{Built("libun7z.so"), kUn7zPath}}};
    for (const char* module : {"ipstack.ko", "addon.ko"})
      files.copies.push_back({Built(module), std::string("/lib/modules/") + module});
    RunMachine(options, files, std::move(supply));
  }

  /// A boot takes a few seconds.
  std::chrono::milliseconds BootTime() const override { return std::chrono::milliseconds(120000); }
};

}  // namespace

std::unique_ptr<Device> MakeArm64Device(BootOptions options) {
  if (options.shell == DefaultBootOptions().shell) options.shell = Built("esh");
  return MakeBoardDevice(std::make_unique<Arm64Kind>(), std::move(options));
}

}  // namespace device
