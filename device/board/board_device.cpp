#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <map>
#include <utility>

#include "device/board/board.h"
#include "device/board/channel.h"
#include "device/board/namespaces.h"
#include "device/board/process.h"
#include "util/unique_handle.h"

namespace device {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kSetUpTime{20000};  // of a board or a console, on a machine under load
constexpr milliseconds kEndTime{5000};

/// @return what the wait status of a device's first process tells.
Outcome OutcomeOf(int wait_status) {
  // What the kernel tells by itself of a PID namespace.
  if (WIFSIGNALED(wait_status) && WTERMSIG(wait_status) == SIGHUP) return Outcome::kRebooted;
  if (WIFSIGNALED(wait_status) && WTERMSIG(wait_status) == SIGINT) return Outcome::kPoweredOff;
  if (!WIFEXITED(wait_status)) return Outcome::kDied;
  if (WEXITSTATUS(wait_status) == kDeviceRestarted) return Outcome::kRebooted;
  return WEXITSTATUS(wait_status) == kDevicePoweredOff ? Outcome::kPoweredOff : Outcome::kDied;
}

class BoardDevice final : public Device {
 public:
  BoardDevice(std::unique_ptr<DeviceKind> kind, BootOptions options)
      : kind_(std::move(kind)), options_(std::move(options)) {}
  ~BoardDevice() override { EndBoard(); }

  std::string Boot() override;
  std::string PowerOn() override;
  bool IsStarting() const override { return IsUp() && !shell_started_; }
  int Console() const override { return console_.Get(); }
  void ResizeConsole(unsigned short columns, unsigned short rows) override;
  CommandResult Run(const std::string& command, const std::string& input, milliseconds time) override {
    return RunOver(device_, command, input, time);
  }
  CommandResult RunInLab(const std::string& command, const std::string& input, milliseconds time) override {
    return RunOver(board_, command, input, time);
  }
  bool PullMedium(const std::string& name) override;
  bool PlugCable(bool in) override;
  Outcome WaitForOutcome(milliseconds time) override;
  int ShellStatus() const override { return shell_status_; }
  void PowerOff() override;
  const std::string& Report() const override { return report_; }
  const std::string& LabNotice() const override { return lab_notice_; }

 private:
  std::string SetUpBoard();
  std::string ForkBoard(bool with_users);
  void EndBoard();
  CommandResult RunOver(Channel& channel, const std::string& command, const std::string& input, milliseconds time);
  template <typename Condition>
  void WaitUntil(milliseconds time, Condition is_so);
  void TakeMessages(int milliseconds_to_wait);
  void Handle(Message& message);
  void NoteShell(const Message& message);
  void DeviceDown(int wait_status);
  void Note(const std::string& event) { report_ += event + "\n"; }
  [[nodiscard]] bool IsUp() const { return device_.Descriptor() >= 0; }
  std::string Fail(const std::string& problem) {
    Note("problem: " + problem);
    return problem;
  }

  std::unique_ptr<DeviceKind> kind_;
  BootOptions options_;
  pid_t board_process_ = -1;
  Channel board_;
  Channel device_;
  UniqueFd console_;
  Outcome outcome_ = Outcome::kPoweredOff;
  bool power_taken_ = false;
  bool shell_started_ = false;
  std::uint32_t boot_ = 0;  ///< how many boots there were
  int shell_status_ = -1;
  std::string problem_;
  bool board_ready_ = false;
  std::uint32_t last_command_ = 0;
  std::map<std::uint32_t, int> ended_commands_;  ///< exit status by request number
  std::string report_;
  std::string lab_notice_;
};

void BoardDevice::EndBoard() {
  if (board_process_ < 0) return;
  board_.Shutdown();  // the board ends, and the kernel ends everything on it before it is gone itself
  const Clock::time_point end = Clock::now() + kEndTime;
  while (waitpid(board_process_, nullptr, WNOHANG) == 0) {
    if (Clock::now() > end) kill(board_process_, SIGKILL);
    poll(nullptr, 0, 1);
  }
  board_process_ = -1;
}

std::string BoardDevice::SetUpBoard() {
  std::string problem = ForkBoard(true);
  if (geteuid() != 0 || !TellsOfForbidding(problem)) return problem;
  // Some machines forbid user namespaces, or to mount in them. Root can do without.
  EndBoard();
  problem_.clear();
  problem = ForkBoard(false);
  lab_notice_.insert(0, "No user namespaces on this machine: the device's root has real rights here.\n");
  return problem;
}

std::string BoardDevice::ForkBoard(bool with_users) {
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  UniqueFd own_end;
  UniqueFd board_end;
  if (!Channel::MakePair(own_end, board_end)) return "cannot make a socket";
  board_process_ = ForkApart(with_users);
  if (board_process_ == 0) {
    DieWithParent();
    constexpr int kChannel = 3;
    KeepOnly({null.Get(), null.Get(), null.Get(), board_end.Get()});
    (void)board_end.Release();
    (void)fcntl(kChannel, F_SETFD, FD_CLOEXEC);
    Channel launcher{UniqueFd(kChannel)};
    if (!launcher.Receive(static_cast<int>(kSetUpTime.count()))) _exit(1);
    RunBoard(*kind_, options_, std::move(launcher));
  }
  if (board_process_ < 0) return Forbidden("make namespaces");
  board_end.Reset();
  board_ = Channel(std::move(own_end));
  if (with_users) {
    if (std::string problem = MapIdentities(board_process_); !problem.empty()) return problem;
  }
  board_.Send(MessageKind::kIdentities);
  WaitUntil(kSetUpTime, [this] { return board_ready_ || !problem_.empty() || board_.Closed(); });
  if (board_ready_) return "";
  return problem_.empty() ? "the board did not start" : problem_;
}

std::string BoardDevice::Boot() {
  if (std::string problem = PowerOn(); !problem.empty()) return problem;
  WaitUntil(kind_->BootTime(), [this] { return !IsStarting(); });
  if (shell_started_) return "";
  PowerOff();
  return Fail(problem_.empty() ? "the device did not start" : problem_);
}

std::string BoardDevice::PowerOn() {
  problem_.clear();
  if (!board_ready_) {
    if (std::string problem = SetUpBoard(); !problem.empty()) return Fail(problem);
  }
  PowerOff();
  UniqueFd own_end;
  UniqueFd device_end;
  if (!Channel::MakePair(own_end, device_end)) return Fail("cannot make a socket");
  const int given = device_end.Get();
  if (!board_.Send(MessageKind::kPowerOn, ++boot_, 0, "", {&given, 1})) return Fail("the board is gone");
  device_end.Reset();
  device_ = Channel(std::move(own_end));
  console_.Reset();
  power_taken_ = false;
  shell_started_ = false;
  shell_status_ = -1;
  outcome_ = Outcome::kRunning;
  Note("power on");

  WaitUntil(kSetUpTime, [this] { return console_ || !problem_.empty() || !IsUp(); });
  if (console_) return "";
  return Fail(problem_.empty() ? "the device did not start" : problem_);
}

void BoardDevice::ResizeConsole(unsigned short columns, unsigned short rows) {
  options_.columns = columns;
  options_.rows = rows;
  const winsize window{rows, columns, 0, 0};
  if (console_) ioctl(console_.Get(), TIOCSWINSZ, &window);
}

Outcome BoardDevice::WaitForOutcome(milliseconds time) {
  TakeMessages(0);
  WaitUntil(time, [this] { return outcome_ != Outcome::kRunning; });
  return outcome_;
}

bool BoardDevice::PullMedium(const std::string& name) {
  const CommandResult result = Run(kind_->PullCommand(name), {}, kCommandTime);
  return result.finished && result.status == 0;
}

bool BoardDevice::PlugCable(bool in) {
  device_.Send(MessageKind::kPlugCable, 0, in ? 1 : 0);  // an emulated port does not see it in the lab
  const std::string script = ShellQuoted(ESH_DEVICE_FILES "/lab/cable.sh");
  const CommandResult result = RunInLab("busybox sh " + script + (in ? " in" : " out"), {}, kCommandTime);
  return result.finished && result.status == 0;
}

void BoardDevice::PowerOff() {
  if (!IsUp()) return;
  power_taken_ = true;
  board_.Send(MessageKind::kPowerOff);
  WaitUntil(kEndTime, [this] { return !IsUp(); });
}

/// Takes messages until something is so, or the time is over.
template <typename Condition>
void BoardDevice::WaitUntil(milliseconds time, Condition is_so) {
  const Clock::time_point end = Clock::now() + time;
  for (milliseconds left = time; !is_so() && left.count() > 0;
       left = std::chrono::ceil<milliseconds>(end - Clock::now()))
    TakeMessages(static_cast<int>(left.count()));
}

/// Takes all messages that are there, after waiting for the first.
void BoardDevice::TakeMessages(int milliseconds_to_wait) {
  std::array<pollfd, 2> waiting{{{board_.Descriptor(), POLLIN, 0}, {device_.Descriptor(), POLLIN, 0}}};
  if (device_.Closed()) waiting[1].fd = -1;
  if (poll(waiting.data(), waiting.size(), milliseconds_to_wait) <= 0) return;
  // The device first: what it said before it went down belongs before that.
  while (std::optional<Message> message = device_.Receive(0)) Handle(*message);
  while (std::optional<Message> message = board_.Receive(0)) Handle(*message);
  if (board_.Closed() && IsUp()) DeviceDown(-1);
}

void BoardDevice::Handle(Message& message) {
  switch (message.kind) {
    case MessageKind::kProblem:
      problem_ = message.text.substr(0, message.text.find('\n'));
      break;
    case MessageKind::kBoardReady:
      board_ready_ = true;
      lab_notice_ = std::move(message.text);
      break;
    case MessageKind::kConsole:
      console_ = std::move(message.descriptors.at(0));
      break;
    case MessageKind::kShellStarts:
    case MessageKind::kHandedOver:
    case MessageKind::kShellEnded:
      NoteShell(message);
      break;
    case MessageKind::kDeviceDown:
      if (message.id == boot_) DeviceDown(message.value);
      break;
    case MessageKind::kCommandEnded:
      ended_commands_[message.id] = message.value;
      break;
    default:
      break;  // the launcher's own
  }
}

/// Keeps what became of the shell.
void BoardDevice::NoteShell(const Message& message) {
  if (message.kind == MessageKind::kShellStarts) {
    shell_started_ = true;
    Note("the shell starts");
  } else if (message.kind == MessageKind::kHandedOver) {
    outcome_ = Outcome::kHandedOver;
    Note("the shell ended and handed the console over");
  } else {
    outcome_ = Outcome::kShellEnded;
    shell_status_ = message.value;
    Note("the shell's process ended with status " + std::to_string(shell_status_));
  }
}

void BoardDevice::DeviceDown(int wait_status) {
  device_ = Channel();
  outcome_ = power_taken_ ? Outcome::kPoweredOff : OutcomeOf(wait_status);
  Note(std::string("the device is down: ") + OutcomeName(outcome_) + (problem_.empty() ? "" : ": " + problem_));
}

CommandResult BoardDevice::RunOver(Channel& channel, const std::string& command, const std::string& input,
                                   milliseconds time) {
  // The command's streams are files in memory: none of them can be full, so that nobody waits for this process.
  std::array<UniqueFd, 3> streams;
  std::array<int, 3> given{};
  for (std::size_t i = 0; i < streams.size(); ++i) {
    streams.at(i).Reset(memfd_create("stream", MFD_CLOEXEC));
    given.at(i) = streams.at(i).Get();
  }
  const std::uint32_t id = ++last_command_;
  if (pwrite(given[0], input.data(), input.size(), 0) != static_cast<ssize_t>(input.size()) ||
      !channel.Send(MessageKind::kRun, id, 0, command, given))
    return {};
  const auto is_over = [&] { return ended_commands_.contains(id) || channel.Descriptor() < 0; };
  WaitUntil(time, is_over);
  const bool finished = ended_commands_.contains(id);
  if (!finished) {
    channel.Send(MessageKind::kKill, id);
    WaitUntil(kEndTime, is_over);  // an emulated device passes on what was written until then
  }
  const auto ended = ended_commands_.extract(id);
  return {finished, finished ? ended.mapped() : -1, ContentsOf(streams[1]), ContentsOf(streams[2])};
}

}  // namespace

std::unique_ptr<Device> MakeBoardDevice(std::unique_ptr<DeviceKind> kind, BootOptions options) {
  return std::make_unique<BoardDevice>(std::move(kind), std::move(options));
}

}  // namespace device
