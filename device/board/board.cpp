#include "device/board/board.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <utility>

#include "device/board/command_server.h"
#include "device/board/host_program.h"
#include "device/board/lab_servers.h"
#include "device/board/namespaces.h"
#include "device/board/signal_file.h"

namespace device {
namespace {

namespace fs = std::filesystem;

/// Directories of the host that the board's own tmpfs may cover. Covering one hides what the host keeps there, so the
/// first is taken that holds nothing a device is made from.
constexpr const char* kCoverable[] = {"/srv", "/mnt", "/media", "/opt"};

bool IsBelow(const std::string& path, const std::string& directory) { return path.rfind(directory + "/", 0) == 0; }

/// @return every place of the host that a device is made from.
std::vector<std::string> NeededPlaces(const DeviceKind& kind, const BootOptions& options, const RootPlan& plan) {
  std::vector<std::string> places = kind.NeededOfHost();
  places.push_back(options.lab_script);
  places.insert(places.end(), plan.layers.begin(), plan.layers.end());
  for (const HostFile& file : plan.copies) places.push_back(file.host_path);
  for (const Medium& medium : options.media) places.push_back(medium.contents);
  if (options.has_lab_servers) {
    const std::vector<std::string> of_servers = NeededByLabServers(options);
    places.insert(places.end(), of_servers.begin(), of_servers.end());
  }
  return places;
}

std::string ChooseDirectory(const std::vector<std::string>& needed) {
  for (const char* directory : kCoverable) {
    const auto is_inside = [directory](const std::string& place) { return IsBelow(place, directory); };
    if (fs::is_directory(directory) && std::none_of(needed.begin(), needed.end(), is_inside)) return directory;
  }
  return "";
}

std::vector<std::string> LabEnvironment() {
  return {"PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin", "HOME=/root", "TERM=dumb"};
}

class Board {
 public:
  Board(const DeviceKind& kind, const BootOptions& options, const RootPlan& plan, Channel launcher)
      : kind_(kind),
        options_(options),
        plan_(plan),
        launcher_(std::move(launcher)),
        lab_commands_([this](std::uint32_t id, int status) { launcher_.Send(MessageKind::kCommandEnded, id, status); },
                      LabEnvironment()) {}

  [[noreturn]] void Run() {
    if (const std::string problem = SetUp(); !problem.empty()) GiveUp(launcher_, problem);
    std::string lab_notice;
    if (options_.has_lab_servers) lab_notice = StartLabServers(options_, directory_ + "/lab", LabEnvironment());
    launcher_.Send(MessageKind::kBoardReady, 0, 0, lab_notice);
    for (;;) ServeOnce();
  }

 private:
  std::string SetUp() {
    DieWithParent();
    signals_ = CatchSignals({SIGCHLD});
    directory_ = ChooseDirectory(NeededPlaces(kind_, options_, plan_));
    if (directory_.empty()) return "no directory of the host can be covered";
    if (std::string problem = PartMounts(); !problem.empty()) return problem;
    if (std::string problem = Mount("proc", "/proc", "proc"); !problem.empty()) return problem;
    own_processes_.Reset(open("/proc/self/ns/pid", O_RDONLY | O_CLOEXEC));
    if (std::string problem = Mount("tmpfs", directory_, "tmpfs", MS_NOSUID, "mode=755"); !problem.empty())
      return problem;
    for (const char* part : {"/root", "/media", "/lab"}) (void)mkdir((directory_ + part).c_str(), 0755);
    for (const Medium& medium : options_.media) {
      const std::string place = directory_ + "/media/" + medium.name;
      if (std::string problem = kind_.MakeMedium(medium, place); !problem.empty()) return problem;
    }
    return "";
  }

  void ServeOnce() {
    std::array<pollfd, 2> waiting{{{launcher_.Descriptor(), POLLIN, 0}, {signals_.Get(), POLLIN, 0}}};
    if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) _exit(1);
    (void)DrainSignals(signals_);
    CollectProcesses();
    if (waiting[0].revents == 0) return;
    if (std::optional<Message> message = launcher_.Receive(0)) Handle(*message);
    if (launcher_.Closed()) _exit(0);
  }

  void CollectProcesses() {
    int status = 0;
    for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
      if (ended == device_) {
        device_ = -1;
        launcher_.Send(MessageKind::kDeviceDown, boot_, status);
      }
      lab_commands_.ChildEnded(ended, status);
    }
  }

  void Handle(Message& message) {
    if (message.kind == MessageKind::kPowerOn && message.descriptors.size() == 1)
      PowerOn(Channel(std::move(message.descriptors[0])), message.id);
    else if (message.kind == MessageKind::kPowerOff && device_ > 0)
      kill(device_, SIGKILL);
    else
      lab_commands_.Handle(message);
  }

  /// Boots a device. The channel is the device's; when it cannot be started, the problem is told there.
  void PowerOn(Channel channel, std::uint32_t boot) {
    boot_ = boot;
    std::string problem = PrepareLab();
    if (problem.empty()) problem = StartDevice(channel);
    if (problem.empty()) return;
    channel.Send(MessageKind::kProblem, 0, 0, problem);
    launcher_.Send(MessageKind::kDeviceDown, boot_, -1);
  }

  std::string StartDevice(Channel& channel) {
    // Only this one child gets the new PID namespace; it is the device's first process.
    if (unshare(CLONE_NEWPID) != 0) return std::string("cannot make a PID namespace: ") + std::strerror(errno);
    const pid_t process = fork();
    if (process == 0) {
      launcher_ = Channel();
      signals_.Reset();
      own_processes_.Reset();
      kind_.RunFirstProcess(options_, plan_, {directory_ + "/root", directory_ + "/media", std::move(channel)});
    }
    if (process < 0) return std::string("cannot start a process: ") + std::strerror(errno);
    device_ = process;
    if (setns(own_processes_.Get(), CLONE_NEWPID) == 0) return "";
    const int reason = errno;
    kill(device_, SIGKILL);  // nothing could be started on this board any more
    return std::string("cannot return to the board's PID namespace: ") + std::strerror(reason);
  }

  std::string PrepareLab() {
    if (options_.lab_script.empty()) return "";
    const pid_t process = fork();
    if (process == 0) {
      const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
      ExecuteProgram({FindProgram("busybox"), "sh", options_.lab_script}, LabEnvironment(),
                     {null.Get(), null.Get(), null.Get()});
    }
    int status = -1;
    if (process < 0 || waitpid(process, &status, 0) != process || status != 0)
      return options_.lab_script + " failed: the device's network cannot be made; root may lack CAP_NET_ADMIN";
    return "";
  }

  const DeviceKind& kind_;
  const BootOptions& options_;
  const RootPlan& plan_;
  Channel launcher_;
  CommandServer lab_commands_;
  UniqueFd signals_;
  UniqueFd own_processes_;  // the board's own PID namespace
  std::string directory_;   // holds "root" for the device's root file system, "media" and "lab"
  pid_t device_ = -1;
  std::uint32_t boot_ = 0;  // number of the boot, told with its end
};

}  // namespace

void RunBoard(const DeviceKind& kind, const BootOptions& options, const RootPlan& plan, Channel launcher) {
  Board(kind, options, plan, std::move(launcher)).Run();
}

}  // namespace device
