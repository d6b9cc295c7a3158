#include "shell/child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string_view>

#include "shell/result.h"
#include "term/console_mode.h"
#include "term/terminal.h"
#include "util/vector.h"

std::int32_t g_EShSubPid = -1;
std::int32_t g_iShellGid = -1;

namespace {

struct TextVectorFreer {
  void operator()(VEC_S* vec) const { ParserVecFree(vec); }
};
using UniqueTextVector = std::unique_ptr<VEC_S, TextVectorFreer>;

bool AppendCopy(VEC_S& words, std::string_view text) {
  char* copy = strndup(text.data(), text.size());
  if (copy == nullptr || VEC_Add(&words, kNoIndex, copy) == kNoIndex) {
    std::free(copy);
    return false;
  }
  return true;
}

/// Splits a command line at runs of blanks; nothing else separates or quotes. NULL when memory is short.
UniqueTextVector SplitAtBlanks(std::string_view line) {
  UniqueTextVector words(VEC_Alloc(kUsualSlots));
  std::size_t start = line.find_first_not_of(' ');
  while (words != nullptr && start != std::string_view::npos) {
    const std::size_t end = std::min(line.find(' ', start), line.size());
    if (!AppendCopy(*words, line.substr(start, end - start))) {
      return nullptr;
    }
    start = line.find_first_not_of(' ', end);
  }
  return words;
}

void SetToolSignals(std::uint16_t ignoreInt) {
  std::signal(SIGINT, ignoreInt == 1 ? SIG_IGN : SIG_DFL);
  for (const int signal : {SIGTERM, SIGHUP, SIGPIPE, SIGTTOU}) {
    std::signal(signal, SIG_DFL);
  }
}

/// Becomes the tool. A step that fails before there is a tool to start counts as success, for the shell's caller
/// could not tell the operator anything about it.
[[noreturn]] void BecomeTool(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo) {
  if (setpgid(0, 0) != 0 || SetPgtp(getpid()) != kSuccess) {
    _exit(EXIT_SUCCESS);
  }
  SetToolSignals(ignoreInt);
  ESH_LINE_RestoreTermiosMode(echo);
  ESH_LINE_MaskSpecKey();
  const UniqueTextVector words = cmdline == nullptr ? nullptr : SplitAtBlanks(cmdline);
  const std::uint64_t count = VEC_GetCount(words.get());
  // The terminating NULL needs a slot of its own, which a full vector lacks.
  if (count == 0 || VEC_Enlarge(words.get(), count + 1) != kSuccess) {
    _exit(EXIT_SUCCESS);
  }
  auto** arguments = reinterpret_cast<char**>(words->ppvArray);
  execv(arguments[0], arguments);
  _exit(EXIT_FAILURE);
}

/// Waits for one child to end, however often a signal interrupts the wait.
int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return -1;
    }
  }
  return status;
}

}  // namespace

std::uint32_t ESH_ForkProcess(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo) {
  g_iShellGid = getpgrp();
  ESH_TERM_OFlush();  // or the tool's output would come before what the shell has already said
  const pid_t child = fork();
  if (child < 0) {
    return ESH_ERR_FAIL;
  }
  if (child == 0) {
    BecomeTool(cmdline, ignoreInt, echo);
  }
  setpgid(child, child);  // also here, so that the group exists whichever process runs first
  g_EShSubPid = child;
  const int status = WaitFor(child);
  g_EShSubPid = -1;
  SetPgtp(g_iShellGid);
  ESH_LINE_SetTermiosMode();
  return status == 0 ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t SetPgtp(pid_t pgrp) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  // A background process that takes the terminal is stopped by the terminal, unless it blocks the signal.
  for (const int signal : {SIGTTOU, SIGTTIN, SIGTSTP, SIGCHLD}) {
    sigaddset(&blocked, signal);
  }
  sigprocmask(SIG_BLOCK, &blocked, &before);
  const int answer = tcsetpgrp(STDERR_FILENO, pgrp);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  return answer == 0 ? kSuccess : ESH_ERR_FAIL;
}

std::uint16_t ESH_IsForkSubProcess() { return g_EShSubPid == -1 ? 0 : 1; }

void ESH_Sig2SubProcess(int sig) {
  if (ESH_IsForkSubProcess() == 1) {
    kill(g_EShSubPid, sig);
  }
}

void ESH_CloseSubProcess() {
  if (ESH_IsForkSubProcess() == 0) {
    return;
  }
  killpg(g_EShSubPid, SIGTERM);
  killpg(g_EShSubPid, SIGHUP);
  SetPgtp(g_iShellGid);
  g_EShSubPid = -1;
}

void ParserVecFree(VEC_S* vec) {
  FreeVectorOf<char>(vec, [](char* text) { std::free(text); });
}
