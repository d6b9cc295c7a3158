#include "device/board/board.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "device/board/command_server.h"
#include "device/board/lab_servers.h"
#include "device/board/namespaces.h"
#include "device/board/process.h"

namespace device {
namespace {

constexpr char kDirectory[] = ESH_DEVICE_BOARD;  // an empty one, which the board's own memory covers
constexpr char kSystemDirectories[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

class Board {
 public:
  Board(const DeviceKind& kind, const BootOptions& options, Channel launcher)
      : kind_(kind), options_(options), launcher_(std::move(launcher)) {}

  [[noreturn]] void Run() {
    // What an ordinary user does not look for programs in is searched too.
    const char* path = std::getenv("PATH");
    setenv("PATH", ((path == nullptr ? std::string() : std::string(path) + ":") + kSystemDirectories).c_str(), 1);
    if (const std::string problem = SetUp(); !problem.empty()) GiveUp(launcher_, problem);
    std::string lab_notice;
    if (options_.has_lab_servers) lab_notice = StartLabServers(options_.lab_directory, directory_ + "/lab");
    launcher_.Send(MessageKind::kBoardReady, 0, 0, lab_notice);
    CommandServer server(launcher_, {},
                         {[this](pid_t process, int status) { ProcessEnded(process, status); },
                          [this](Message& message) { Handle(message); }});
    for (;;) (void)server.ServeOnce();
  }

 private:
  std::string SetUp() {
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

  void ProcessEnded(pid_t process, int status) {
    if (process != device_) return;
    device_ = -1;
    launcher_.Send(MessageKind::kDeviceDown, boot_, status);
  }

  void Handle(Message& message) {
    if (message.kind == MessageKind::kPowerOn && message.descriptors.size() == 1)
      PowerOn(Channel(std::move(message.descriptors[0])), message.id);
    else if (message.kind == MessageKind::kPowerOff && device_ > 0)
      kill(device_, SIGKILL);
  }

  /// Boots a device. The channel is the device's; when it cannot be started, the problem is told there.
  void PowerOn(Channel channel, std::uint32_t boot) {
    boot_ = boot;
    std::string problem;
    if (std::string said; !RunProgram({"busybox", "sh", ESH_DEVICE_FILES "/lab/connect.sh"}, said))
      problem = "the device's network cannot be made; root may lack CAP_NET_ADMIN: " + said;
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
      DieWithParent();
      setsid();
      launcher_ = Channel();
      kind_.RunFirstProcess(options_, {directory_ + "/root", directory_ + "/media", std::move(channel)});
    }
    if (process < 0) return std::string("cannot start a process: ") + std::strerror(errno);
    device_ = process;
    if (setns(own_processes_.Get(), CLONE_NEWPID) == 0) return "";
    const int reason = errno;
    kill(device_, SIGKILL);  // nothing could be started on this board any more
    return std::string("cannot return to the board's PID namespace: ") + std::strerror(reason);
  }

  const DeviceKind& kind_;
  const BootOptions& options_;
  Channel launcher_;
  UniqueFd own_processes_;             ///< the board's own PID namespace
  std::string directory_{kDirectory};  ///< holds "root" for the device's root file system, "media" and "lab"
  pid_t device_ = -1;
  std::uint32_t boot_ = 0;  ///< number of the boot, told with its end
};

}  // namespace

void RunBoard(const DeviceKind& kind, const BootOptions& options, Channel launcher) {
  Board(kind, options, std::move(launcher)).Run();
}

}  // namespace device
