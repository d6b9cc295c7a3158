#include "pkg/process_runner.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "shell/child_process.h"
#include "shell/result.h"
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/new_file.h"
#include "util/unique_handle.h"
#include "util/vector.h"

namespace {

constexpr char kShell[] = "/bin/sh";
constexpr char kScript[] = "/etc/pkg/TempFile";
constexpr mode_t kScriptMode = 0666;
constexpr char kInterpreterLine[] = "#!/bin/sh\r\n";  // written with its NUL, which the interpreter skips
constexpr char kRemove[] = "/bin/rm";
constexpr std::string_view kBlanks = " \t";
constexpr std::size_t kCommandRoom = 64;

bool AppendWord(VEC_S& words, std::string_view text) {
  UniqueText word(strndup(text.data(), text.size()));
  if (word == nullptr || VEC_Add(&words, kNoIndex, word.get()) == kNoIndex) {
    return false;
  }
  (void)word.release();  // the vector's now
  return true;
}

void SetToolSignals() {
  std::signal(SIGINT, SIG_IGN);   // SIGHUP the shell ignores already
  std::signal(SIGPIPE, SIG_DFL);  // which it ignores too, but a tool before a pipe ends by it
}

[[noreturn]] void BecomeProgram(char* const* arguments) {
  SetToolSignals();
  execv(arguments[0], arguments);
  _exit(EXIT_FAILURE);
}

[[noreturn]] void BecomeCommand(const char* commandLine) {
  VEC_S* words = PKG_ParserVecAlloc(commandLine);
  const std::uint64_t count = VEC_GetCount(words);
  // The terminating NULL needs a slot of its own, which a full vector lacks.
  if (count == 0 || VEC_Enlarge(words, count + 1) != kSuccess) {
    _exit(EXIT_FAILURE);
  }
  BecomeProgram(reinterpret_cast<char**>(words->ppvArray));
}

std::uint32_t ResultOfChild(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return ESH_ERR_FAIL;
    }
  }
  return status == 0 ? kSuccess : ESH_ERR_FAIL;
}

/// Runs what the child becomes.
template <typename Become>
std::uint32_t RunInChild(Become become) {
  ESH_TERM_OFlush();  // or what the shell has said would come twice, or late
  const pid_t child = fork();
  if (child == 0) {
    become();
  }
  return child < 0 ? ESH_ERR_FAIL : ResultOfChild(child);
}

std::uint32_t WriteScript(const char* body) {
  UniqueFd script(CreateAnew(kScript, kScriptMode));
  // The mode also counts where the file-creation mask would cut it.
  if (!script || fchmod(script.Get(), kScriptMode) != 0 ||
      !WriteAll(script.Get(), kInterpreterLine, sizeof(kInterpreterLine)) ||
      !WriteAll(script.Get(), body, std::strlen(body))) {
    return ESH_ERR_FAIL;
  }
  return close(script.Release()) == 0 ? kSuccess : ESH_ERR_FAIL;
}

}  // namespace

VEC_S* PKG_ParserVecAlloc(const char* text) {
  VEC_S* words = VEC_Alloc(kUsualSlots);
  const std::string_view line(text);
  std::size_t start = line.find_first_not_of(kBlanks);
  while (words != nullptr && start != std::string_view::npos) {
    const std::size_t end = std::min(line.find_first_of(kBlanks, start), line.size());
    if (!AppendWord(*words, line.substr(start, end - start))) {
      ParserVecFree(words);
      return nullptr;
    }
    start = line.find_first_not_of(kBlanks, end);
  }
  return words;
}

std::uint32_t PKG_System(const char* commandLine) {
  return RunInChild([commandLine] { BecomeCommand(commandLine); });
}

std::uint32_t PKG_SystemProc(const char* scriptBody) {
  FixedText<kCommandRoom> command;
  command.Append("%s %s", kShell, kScript);
  // Half a script is never run.
  const std::uint32_t result = WriteScript(scriptBody) == kSuccess ? PKG_System(command.Text()) : ESH_ERR_FAIL;
  (void)unlink(kScript);  // an absent script is what is wanted
  return result;
}

std::uint32_t RemoveWithTool(const char* path) {
  // Not by a command line: the name may hold blanks.
  char* const arguments[] = {const_cast<char*>(kRemove), const_cast<char*>("-f"), const_cast<char*>(path), nullptr};
  return RunInChild([&arguments] { BecomeProgram(arguments); });
}
