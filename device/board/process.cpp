#include "device/board/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

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

}  // namespace

UniqueFd CatchSignals(std::initializer_list<int> numbers) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : numbers) sigaddset(&signals, number);
  sigprocmask(SIG_SETMASK, &signals, nullptr);
  return UniqueFd(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

bool DrainSignals(const UniqueFd& signals) {
  signalfd_siginfo received{};
  bool has_usr1 = false;
  while (read(signals.Get(), &received, sizeof(received)) == static_cast<ssize_t>(sizeof(received)))
    has_usr1 = has_usr1 || received.ssi_signo == SIGUSR1;
  return has_usr1;
}

void DieWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }

void KeepOnly(const std::vector<int>& descriptors) {
  const int count = static_cast<int>(descriptors.size());
  std::vector<int> copies;  // out of each other's way
  copies.reserve(descriptors.size());
  for (const int descriptor : descriptors) copies.push_back(fcntl(descriptor, F_DUPFD, count));
  for (int number = 0; number < count; ++number) dup2(copies[static_cast<std::size_t>(number)], number);
  close_range(static_cast<unsigned>(count), ~0U, 0);
}

void ExecuteProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment,
                    const std::vector<int>& descriptors) {
  ResetSignals();
  KeepOnly(descriptors);
  const std::vector<char*> arguments = TerminatedPointers(words);
  const std::vector<char*> variables = TerminatedPointers(environment);
  execvpe(arguments.front(), arguments.data(), environment.empty() ? environ : variables.data());
  (void)dprintf(STDERR_FILENO, "cannot start %s: %s\n", arguments.front(), std::strerror(errno));
  _exit(kCannotStart);
}

int ExitStatusOf(int wait_status) {
  return WIFSIGNALED(wait_status) ? 128 + WTERMSIG(wait_status) : WEXITSTATUS(wait_status);
}

bool RunProgram(const std::vector<std::string>& words, std::string& output, void (*prepare)()) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  const pid_t process = fork();
  if (process == 0) {
    if (prepare != nullptr) prepare();
    ExecuteProgram(words, {}, {open("/dev/null", O_RDWR | O_CLOEXEC), writing.Get(), writing.Get()});
  }
  writing.Reset();
  std::array<char, 4096> block{};
  ssize_t length = 0;
  while ((length = read(reading.Get(), block.data(), block.size())) > 0 || (length < 0 && errno == EINTR))
    if (length > 0) output.append(block.data(), static_cast<std::size_t>(length));
  int status = -1;
  return process > 0 && waitpid(process, &status, 0) == process && status == 0;
}

std::string FileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string ContentsOf(const UniqueFd& file) { return FileBytes("/proc/self/fd/" + std::to_string(file.Get())); }

}  // namespace device
