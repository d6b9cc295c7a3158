#include "device/board/command_server.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include "device/board/process.h"

namespace device {

CommandServer::CommandServer(Channel& channel, std::vector<std::string> environment, Others others)
    : channel_(channel),
      signals_(CatchSignals({SIGCHLD, SIGUSR1})),
      environment_(std::move(environment)),
      others_(std::move(others)) {}

bool CommandServer::ServeOnce(int also) {
  std::array<pollfd, 3> waiting{{{channel_.Descriptor(), POLLIN, 0}, {signals_.Get(), POLLIN, 0}, {also, POLLIN, 0}}};
  if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) _exit(1);
  if (DrainSignals(signals_)) channel_.Send(MessageKind::kHandedOver);  // from /sbin/scmd
  CollectProcesses();
  std::optional<Message> message;
  if (waiting[0].revents != 0) message = channel_.Receive(0);
  if (channel_.Closed()) _exit(0);
  if (message && message->kind == MessageKind::kRun) {
    Start(*message);
  } else if (message && message->kind == MessageKind::kKill) {
    for (const auto& [process, id] : running_)
      if (id == message->id) kill(-process, SIGKILL);
  } else if (message) {
    others_.message(*message);
  }
  return waiting[2].revents != 0;
}

void CommandServer::CollectProcesses() {
  int status = 0;
  for (pid_t ended = 0; (ended = waitpid(-1, &status, WNOHANG)) > 0;)
    if (const auto command = running_.extract(ended); !command.empty())
      channel_.Send(MessageKind::kCommandEnded, command.mapped(), ExitStatusOf(status));
    else
      others_.ended(ended, status);
}

void CommandServer::Start(const Message& message) {
  const std::vector<UniqueFd>& streams = message.descriptors;
  const pid_t process = streams.size() == 3 ? fork() : -1;
  if (process == 0) {
    setsid();  // a group of its own, so that what it started can be ended with it
    ExecuteProgram({"/bin/sh", "-c", message.text}, environment_,
                   {streams[0].Get(), streams[1].Get(), streams[2].Get()});
  }
  if (process > 0)
    running_.emplace(process, message.id);
  else
    channel_.Send(MessageKind::kCommandEnded, message.id, -1);
}

}  // namespace device
