#include "device/board/command_server.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace device {
namespace {

constexpr int kCannotStart = 127;  // what a shell answers for a program that is not there

std::vector<char*> TerminatedPointers(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

void ResetSignals() {
  for (int number = 1; number < NSIG; ++number) (void)std::signal(number, SIG_DFL);  // two of them refuse
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Moves descriptors onto 0, 1, 2 and so on, first out of each other's way.
void PlaceDescriptors(const std::vector<int>& descriptors) {
  const int count = static_cast<int>(descriptors.size());
  std::vector<int> copies;
  copies.reserve(descriptors.size());
  for (const int descriptor : descriptors) copies.push_back(fcntl(descriptor, F_DUPFD, count));
  for (int number = 0; number < count; ++number) dup2(copies[static_cast<std::size_t>(number)], number);
  close_range(static_cast<unsigned>(count), ~0U, 0);
}

}  // namespace

void ExecuteProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment,
                    const std::vector<int>& descriptors) {
  ResetSignals();
  PlaceDescriptors(descriptors);
  const std::vector<char*> arguments = TerminatedPointers(words);
  const std::vector<char*> variables = TerminatedPointers(environment);
  execve(arguments.front(), arguments.data(), variables.data());
  _exit(kCannotStart);
}

int ExitStatusOf(int wait_status) {
  return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

CommandServer::CommandServer(Answer answer, std::vector<std::string> environment)
    : answer_(std::move(answer)), environment_(std::move(environment)) {}

void CommandServer::Handle(const Message& message) {
  if (message.kind == MessageKind::kRun) Start(message);
  if (message.kind != MessageKind::kKill) return;
  for (const auto& [process, id] : running_)
    if (id == message.id) kill(-process, SIGKILL);
}

void CommandServer::Start(const Message& message) {
  const pid_t process = message.descriptors.size() == 3 ? fork() : -1;
  if (process == 0) {
    setsid();  // a group of its own, so that what it started can be ended with it
    ExecuteProgram({"/bin/sh", "-c", message.text}, environment_,
                   {message.descriptors[0].Get(), message.descriptors[1].Get(), message.descriptors[2].Get()});
  }
  if (process < 0) {
    answer_(message.id, kCannotStart);
    return;
  }
  running_.emplace(process, message.id);
}

void CommandServer::ChildEnded(pid_t child, int wait_status) {
  const auto command = running_.find(child);
  if (command == running_.end()) return;
  const std::uint32_t id = command->second;
  running_.erase(command);
  answer_(id, ExitStatusOf(wait_status));
}

}  // namespace device
