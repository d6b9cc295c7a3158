#include "shell/tool/child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include "shell/tool/argument_list.h"
#include "term/console_mode.h"
#include "term/line_editor.h"
#include "term/terminal.h"
#include "util/result.h"
#include "util/signals_held.h"

namespace {

constexpr std::int32_t kNoProcess = -1;

}  // namespace

std::int32_t g_EShSubPid = kNoProcess;
std::int32_t g_iShellGid = kNoProcess;

namespace {

void SetToolSignals(std::uint16_t ignoreInt) {
  std::signal(SIGINT, ignoreInt == 1 ? SIG_IGN : SIG_DFL);
  for (const int signal : {SIGTERM, SIGHUP, SIGPIPE, SIGTTOU}) std::signal(signal, SIG_DFL);
  UnblockSignals();
}

/// Becomes the tool. A step that fails before there is a tool to start counts as success, for the shell's caller
/// could not tell the operator anything about it.
[[noreturn]] void BecomeTool(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo) {
  if (setpgid(0, 0) != 0 || SetPgtp(getpid()) != kSuccess) _exit(EXIT_SUCCESS);
  SetToolSignals(ignoreInt);
  SetToolMode(echo);
  const UniqueArguments words = cmdline == nullptr ? nullptr : SplitCommandLine(cmdline, " ");
  char* const* arguments = ArgumentsOf(words.get());
  if (arguments == nullptr) _exit(EXIT_SUCCESS);
  execv(arguments[0], arguments);
  _exit(EXIT_FAILURE);
}

/// Notes the child's process id, or that there is none.
void StartTool(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo) {
  const SignalsHeld held;
  const pid_t child = fork();
  if (child == 0) BecomeTool(cmdline, ignoreInt, echo);
  g_EShSubPid = child;
}

}  // namespace

std::uint32_t ESH_ForkProcess(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo) {
  g_iShellGid = getpgrp();
  const ConsoleKept console;
  ESH_TERM_OFlush();  // or the tool's output would come before what the shell has already said
  StartTool(cmdline, ignoreInt, echo);
  if (g_EShSubPid == kNoProcess) return ESH_ERR_FAIL;
  setpgid(g_EShSubPid, g_EShSubPid);  // also here, so that the group exists whichever process runs first
  const std::uint32_t result = ResultOfChild(g_EShSubPid);
  g_EShSubPid = kNoProcess;
  SetPgtp(g_iShellGid);
  console.PutBack();
  ESH_LINE_SetTermiosMode();
  return result;
}

std::uint32_t ResultOfChild(pid_t child) {
  int status = EXIT_FAILURE;
  (void)TEMP_FAILURE_RETRY(waitpid(child, &status, 0));
  return status == 0 ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t SetPgtp(pid_t pgrp) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  // A background process that takes the terminal is stopped by the terminal, unless it blocks the signal.
  for (const int signal : {SIGTTOU, SIGTTIN, SIGTSTP, SIGCHLD}) sigaddset(&blocked, signal);
  sigprocmask(SIG_BLOCK, &blocked, &before);
  const int answer = tcsetpgrp(STDERR_FILENO, pgrp);
  sigprocmask(SIG_SETMASK, &before, nullptr);
  return answer == 0 ? kSuccess : ESH_ERR_FAIL;
}

std::uint16_t ESH_IsForkSubProcess() { return g_EShSubPid == kNoProcess ? 0 : 1; }

void ESH_Sig2SubProcess(int sig) {
  if (ESH_IsForkSubProcess() == 1) kill(g_EShSubPid, sig);
}

void ESH_CloseSubProcess() {
  if (ESH_IsForkSubProcess() == 0) return;
  killpg(g_EShSubPid, SIGTERM);
  killpg(g_EShSubPid, SIGHUP);
  SetPgtp(g_iShellGid);
  g_EShSubPid = kNoProcess;
}

void ESH_Exit() {
  ESH_CloseSubProcess();
  ESH_LINE_Exit();
}
