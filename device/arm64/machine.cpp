#include "device/arm64/machine.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "device/arm64/console_line.h"
#include "device/arm64/cpio_archive.h"
#include "device/arm64/emulator.h"
#include "device/arm64/frame_relay.h"
#include "device/arm64/frame_stream.h"
#include "device/arm64/lab_cable.h"
#include "device/arm64/packed_texts.h"
#include "device/arm64/stream_carrier.h"
#include "device/board/file_bytes.h"
#include "device/board/namespaces.h"
#include "device/board/shell_start.h"
#include "device/board/signal_file.h"

namespace device {
namespace {

namespace fs = std::filesystem;

constexpr int kLastWordsMilliseconds = 500;  // for a reader to take what a machine that is down has printed

/// A medium is as it came from its maker while its first sector is all zeros.
bool IsNew(const std::string& image) {
  std::array<char, 512> sector{};
  std::ifstream file(image, std::ios::binary);
  return file.read(sector.data(), sector.size()) &&
         std::all_of(sector.begin(), sector.end(), [](char byte) { return byte == 0; });
}

/// Makes the root file system in a directory, and the archive of it that the kernel unpacks.
std::string MakeFirstRoot(const BootOptions& options, const RootPlan& plan, const PowerSupply& supply,
                          const std::string& archive_path) {
  const std::string root = supply.empty_directory + "/root";
  (void)mkdir(root.c_str(), 0755);
  if (std::string problem = ComposeRoot(plan, root); !problem.empty()) return problem;
  for (const Medium& medium : options.media) {
    if (medium.contents.empty() || !IsNew(supply.media_directory + "/" + medium.name)) continue;
    const std::string place = root + "/run/media/" + medium.name;  // where /init looks for what belongs on it
    std::error_code error;
    fs::create_directories(place, error);
    fs::copy(medium.contents, place, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (error) return "cannot fill " + medium.name + " from " + medium.contents + ": " + error.message();
  }

  std::ofstream file(archive_path, std::ios::binary);
  CpioArchive archive(file);
  if (std::string problem = archive.AddTree(root); !problem.empty()) return problem;
  archive.AddDevice("dev/console", 0600, 5, 1);  // /init's, before it has made the others
  return archive.Finish() ? "" : "cannot write " + archive_path;
}

/// @return the line of an output that says best why a machine went down: the kernel's panic, or the last one.
std::string ReasonIn(std::string_view output) {
  constexpr std::string_view kPanic = "Kernel panic";
  while (output.ends_with('\n') || output.ends_with('\r')) output.remove_suffix(1);
  const std::size_t panic = output.find(kPanic);
  const std::size_t begin = panic != std::string_view::npos ? panic : output.find_last_of('\n') + 1;
  return std::string(output.substr(begin, output.find_first_of("\r\n", begin) - begin));
}

class Machine {
 public:
  Machine(const BootOptions& options, PowerSupply& supply, ConsoleLine console, MachineLines lines, LabCable cable)
      : options_(options),
        channel_(supply.channel),
        console_(std::move(console)),
        monitor_(std::move(lines.monitor)),
        port_(std::move(lines.network)),
        cable_(std::move(cable)),
        network_(port_.Get(), cable_.Descriptor()),
        frames_(std::move(lines.guest)),
        streams_(frames_) {}

  /// Gives the console to the launcher, and passes on what happens until the emulator ends.
  /// @return exit status for this process.
  int ServeUntilDown(pid_t emulator, int signals) {
    GiveConsole();
    while (!HasEnded(emulator)) ServeOnce(signals);
    return GoDown();
  }

  [[nodiscard]] bool IsUp() const { return is_up_; }
  [[nodiscard]] const std::string& LastWords() const { return console_.LastWords(); }

 private:
  void ServeOnce(int signals) {
    const short line_events = frames_.Unsent() > 0 ? POLLIN | POLLOUT : POLLIN;
    std::vector<pollfd> waiting{{channel_.Descriptor(), POLLIN, 0},
                                {signals, POLLIN, 0},
                                {monitor_.Get(), POLLIN, 0},
                                {cable_.Changes(), POLLIN, 0},
                                {frames_.Closed() ? -1 : frames_.Descriptor(), line_events, 0}};
    console_.Watch(waiting);
    network_.Watch(waiting);
    streams_.Watch(waiting);
    if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) _exit(1);

    signalfd_siginfo received{};
    while (read(signals, &received, sizeof(received)) > 0) {
      // The signals only wake; waitpid tells.
    }
    console_.Carry();
    network_.Pass();
    if (waiting[2].revents != 0) ListenToMonitor();
    frames_.Flush();
    if (waiting[3].revents != 0) LookAtCable();
    if (waiting[4].revents != 0) frames_.Receive();
    while (std::optional<Frame> frame = frames_.Next()) Handle(*frame);
    if (waiting[0].revents != 0) ListenToLauncher();
    streams_.Carry();
    AnswerCommands();
  }

  static bool HasEnded(pid_t emulator) {
    for (pid_t ended = 0; (ended = waitpid(-1, nullptr, WNOHANG)) > 0;)
      if (ended == emulator) return true;
    return false;
  }

  void ListenToMonitor() {
    std::array<char, 4096> block{};
    const ssize_t length = recv(monitor_.Get(), block.data(), block.size(), MSG_DONTWAIT);
    if (length > 0) monitor_says_.append(block.data(), static_cast<std::size_t>(length));
    if (length == 0) monitor_.Reset();
  }

  void LookAtCable() {
    const std::string command = CableCommand(cable_.IsPluggedIn());
    (void)send(monitor_.Get(), command.data(), command.size(), MSG_DONTWAIT);
  }

  void ListenToLauncher() {
    std::optional<Message> message = channel_.Receive(0);
    if (channel_.Closed()) _exit(0);  // the emulator ends with this process
    if (!message) return;
    if (message->kind == MessageKind::kKill) {
      frames_.Send(FrameKind::kKill, message->id);
      streams_.Drop(message->id);
    }
    if (message->kind != MessageKind::kRun || message->descriptors.size() != 3) return;
    streams_.AddSink(message->id, 1, std::move(message->descriptors[1]));
    streams_.AddSink(message->id, 2, std::move(message->descriptors[2]));
    frames_.Send(FrameKind::kRun, message->id, 0, message->text);
    streams_.AddSource(message->id, 0, std::move(message->descriptors[0]));
  }

  void Handle(const Frame& frame) {
    switch (frame.kind) {
      case FrameKind::kHello:
        StartShell();
        break;
      case FrameKind::kStream:
        streams_.Accept(frame);
        break;
      case FrameKind::kCommandEnded:
        ended_commands_[frame.id] = frame.value;
        break;
      case FrameKind::kHandedOver:
        channel_.Send(MessageKind::kHandedOver);
        break;
      case FrameKind::kShellEnded:
        channel_.Send(MessageKind::kShellEnded, 0, frame.value);
        break;
      case FrameKind::kStartShell:
      case FrameKind::kRun:
      case FrameKind::kKill:
        break;  // our own
    }
  }

  void GiveConsole() {
    const UniqueFd operator_end = console_.TakeOperatorEnd();
    const int given = operator_end.Get();
    channel_.Send(MessageKind::kConsole, 0, 0, "", {&given, 1});
  }

  void StartShell() {
    is_up_ = true;
    channel_.Send(MessageKind::kShellStarts);
    const std::vector<std::string> words = ShellWords(options_);
    frames_.Send(FrameKind::kStartShell, 0, static_cast<std::int32_t>(words.size()),
                 PackTexts(words) + PackTexts(ShellEnvironment(options_)));
  }

  /// An answer waits until all that its command wrote has been passed on.
  void AnswerCommands() {
    std::erase_if(
        ended_commands_,
        [this](const auto& ended) {
          if (streams_.HasUnwritten(ended.first)) return false;
          streams_.Drop(ended.first);
          channel_.Send(MessageKind::kCommandEnded, ended.first, ended.second);
          return true;
        });
  }

  int GoDown() {
    ListenToMonitor();
    console_.CarryRest(kLastWordsMilliseconds);
    switch (MonitorTells(monitor_says_)) {
      case MachineEnd::kRestart:
        return kDeviceRestarted;
      case MachineEnd::kPowerOff:
        return kDevicePoweredOff;
      case MachineEnd::kNone:
        break;
    }
    return 1;
  }

  const BootOptions& options_;
  Channel& channel_;
  ConsoleLine console_;
  UniqueFd monitor_;
  UniqueFd port_;
  LabCable cable_;
  FrameRelay network_;
  FrameStream frames_;
  StreamCarrier streams_;
  std::map<std::uint32_t, int> ended_commands_;  // wait status by request number
  std::string monitor_says_;
  bool is_up_ = false;
};

}  // namespace

void RunMachine(const BootOptions& options, const RootPlan& plan, const std::string& kernel, PowerSupply supply) {
  DieWithParent();
  setsid();
  const UniqueFd signals = CatchSignals({SIGCHLD});
  (void)std::signal(SIGPIPE, SIG_IGN);
  LabCable cable;
  if (std::string problem = cable.Open(); !problem.empty()) GiveUp(supply.channel, problem);
  // All that a boot needs is in memory that goes with the boot.
  if (unshare(CLONE_NEWNS) != 0) GiveUp(supply.channel, "cannot make the machine's mount namespace");
  std::string problem = Mount("tmpfs", supply.empty_directory, "tmpfs", MS_NOSUID, "mode=755");
  MachineParts parts{kernel, supply.empty_directory + "/first-root.cpio", {}, cable.PortAddress()};
  if (problem.empty()) problem = MakeFirstRoot(options, plan, supply, parts.first_root);
  if (!problem.empty()) GiveUp(supply.channel, problem);
  for (const Medium& medium : options.media)
    parts.disks.push_back({supply.media_directory + "/" + medium.name, medium.name});

  MachineLines lines;
  const std::string log_path = supply.empty_directory + "/emulator.log";
  const UniqueFd log(open(log_path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  const pid_t emulator = StartEmulator(parts, lines, log.Get());
  if (emulator < 0) GiveUp(supply.channel, "cannot start the emulator");
  ConsoleLine console;
  if (problem = console.Open(std::move(lines.serial)); !problem.empty()) GiveUp(supply.channel, problem);

  Machine machine(options, supply, std::move(console), std::move(lines), std::move(cable));
  const int status = machine.ServeUntilDown(emulator, signals.Get());
  if (machine.IsUp()) _exit(status);
  std::string text = machine.LastWords();
  if (text.empty()) text = FileBytes(log_path).value_or("");
  GiveUp(supply.channel, "the machine went down before it was up: " + ReasonIn(text));
}

}  // namespace device
