#include "pkg/install/process_runner.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

#include "shell/tool/argument_list.h"
#include "shell/tool/child_process.h"
#include "shell/tool/script_file.h"
#include "term/terminal.h"
#include "util/result.h"

namespace {

constexpr char kScript[] = "/etc/pkg/TempFile";
constexpr char kRemove[] = "/bin/rm";
constexpr std::string_view kBlanks = " \t";

void SetUnpackerSignals() {
  std::signal(SIGINT, SIG_IGN);   // SIGHUP the shell ignores already
  std::signal(SIGPIPE, SIG_DFL);  // which it ignores too, but a tool before a pipe ends by it
}

[[noreturn]] void BecomeProgram(char* const* arguments) {
  SetUnpackerSignals();
  execv(arguments[0], arguments);
  _exit(EXIT_FAILURE);
}

[[noreturn]] void BecomeCommand(const char* commandLine) {
  const UniqueArguments words(PKG_ParserVecAlloc(commandLine));
  char* const* arguments = ArgumentsOf(words.get());
  if (arguments == nullptr) _exit(EXIT_FAILURE);
  BecomeProgram(arguments);
}

/// Runs what the child becomes.
template <typename Become>
std::uint32_t RunInChild(Become become) {
  ESH_TERM_OFlush();  // or what the shell has said would come twice, or late
  const pid_t child = fork();
  if (child == 0) become();
  return child < 0 ? ESH_ERR_FAIL : ResultOfChild(child);
}

}  // namespace

VEC_S* PKG_ParserVecAlloc(const char* text) { return SplitCommandLine(text, kBlanks).release(); }

std::uint32_t PKG_System(const char* commandLine) {
  return RunInChild([commandLine] { BecomeCommand(commandLine); });
}

std::uint32_t PKG_SystemProc(const char* scriptBody) { return RunAsScript(kScript, scriptBody, PKG_System); }

std::uint32_t RemoveWithTool(const char* path) {
  char* const arguments[] = {const_cast<char*>(kRemove), const_cast<char*>("-f"), const_cast<char*>(path), nullptr};
  return RunInChild([&arguments] { BecomeProgram(arguments); });
}
