// The first process of an emulated machine: starts the shell on the console, collects processes, and runs commands for
// the host, which it hears on the line named by its one argument.
#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "device/arm64/frame_stream.h"
#include "device/arm64/packed_texts.h"
#include "device/arm64/stream_carrier.h"
#include "device/board/channel.h"
#include "device/board/command_server.h"
#include "device/board/shell_start.h"
#include "device/board/signal_file.h"
#include "util/unique_handle.h"

namespace device {
namespace {

constexpr char kConsole[] = "/dev/ttyAMA0";

class Guest {
 public:
  explicit Guest(UniqueFd line)
      : signals_(CatchSignals({SIGCHLD, SIGUSR1})),
        console_(open(kConsole, O_RDWR | O_NOCTTY | O_CLOEXEC)),
        frames_(std::move(line)),
        streams_(frames_),
        commands_([this](std::uint32_t id, int wait_status) { CommandEnded(id, wait_status); }, CommandEnvironment()) {}

  [[noreturn]] void Serve() {
    frames_.Send(FrameKind::kHello);
    for (;;) ServeOnce();
  }

 private:
  void ServeOnce() {
    const short line_events = frames_.Unsent() > 0 ? POLLIN | POLLOUT : POLLIN;
    std::vector<pollfd> waiting{{frames_.Descriptor(), line_events, 0}, {signals_.Get(), POLLIN, 0}};
    streams_.Watch(waiting);
    poll(waiting.data(), waiting.size(), -1);
    TakeSignals();
    frames_.Flush();
    if ((waiting[0].revents & POLLIN) != 0) frames_.Receive();
    while (std::optional<Frame> frame = frames_.Next()) Handle(*frame);
    streams_.Carry();
  }

  void TakeSignals() {
    signalfd_siginfo received{};
    while (read(signals_.Get(), &received, sizeof(received)) == static_cast<ssize_t>(sizeof(received)))
      if (received.ssi_signo == SIGUSR1) frames_.Send(FrameKind::kHandedOver);
    int status = 0;
    for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;) {
      if (ended == shell_) frames_.Send(FrameKind::kShellEnded, 0, status);
      commands_.ChildEnded(ended, status);
    }
  }

  void Handle(Frame& frame) {
    if (frame.kind == FrameKind::kStartShell) StartShell(frame);
    if (frame.kind == FrameKind::kRun) RunCommand(frame);
    if (frame.kind == FrameKind::kStream) streams_.Accept(frame);
    if (frame.kind != FrameKind::kKill) return;
    Message message;
    message.kind = MessageKind::kKill;
    message.id = frame.id;
    commands_.Handle(message);
    streams_.Drop(frame.id);
  }

  void StartShell(const Frame& frame) {
    std::vector<std::string> words = UnpackTexts(frame.bytes);
    const auto count = static_cast<std::ptrdiff_t>(frame.value);
    const std::vector<std::string> environment(words.begin() + count, words.end());
    words.resize(static_cast<std::size_t>(count));
    shell_ = fork();
    if (shell_ != 0) return;
    // Not a session of its own: whoever holds the console later must not get it as controlling terminal.
    setpgid(0, 0);
    ExecuteProgram(words, environment, {console_.Get(), console_.Get(), console_.Get()});
  }

  void RunCommand(Frame& frame) {
    std::array<std::array<int, 2>, 3> pipes{};
    Message message;
    message.kind = MessageKind::kRun;
    message.id = frame.id;
    message.text = std::move(frame.bytes);
    for (int stream = 0; stream < 3; ++stream) {
      std::array<int, 2>& ends = pipes.at(static_cast<std::size_t>(stream));
      if (pipe2(ends.data(), O_CLOEXEC) != 0) break;  // a request without its streams is answered as a failure
      if (stream == 0) {
        message.descriptors.emplace_back(ends[0]);
        streams_.AddSink(frame.id, stream, UniqueFd(ends[1]));
      } else {
        message.descriptors.emplace_back(ends[1]);
        streams_.AddSource(frame.id, stream, UniqueFd(ends[0]));
      }
    }
    commands_.Handle(message);
  }

  void CommandEnded(std::uint32_t id, int wait_status) {
    streams_.FinishSources(id);
    streams_.Drop(id);
    frames_.Send(FrameKind::kCommandEnded, id, wait_status);
  }

  UniqueFd signals_;
  UniqueFd console_;  // stays open, so that the line keeps its modes when nobody else has it open
  FrameStream frames_;
  StreamCarrier streams_;
  CommandServer commands_;
  pid_t shell_ = -1;
};

}  // namespace
}  // namespace device

int main(int argc, char** argv) {
  UniqueFd line(argc == 2 ? open(argv[1], O_RDWR | O_CLOEXEC) : -1);
  if (!line) {
    (void)std::fprintf(stderr, "device-guest: no line to the host: %s\n", std::strerror(errno));
    return 1;
  }
  (void)std::signal(SIGPIPE, SIG_IGN);  // a command need not read its input
  device::Guest(std::move(line)).Serve();
}
