#include "net/system_proc.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <utility>

#include "shell/child_process.h"
#include "shell/result.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr char kShell[] = "/bin/sh";
constexpr char kScript[] = "/var/tmp/TempFile";
constexpr char kFirstLine[] = "#!/bin/sh\r\n";  // written with its NUL, which the shell skips
constexpr std::size_t kToolLineRoom = 512;
constexpr mode_t kScriptMode = 0666;

bool Write(UniqueFile file, const char* command) {
  const std::size_t length = std::strlen(command);
  const bool taken = std::fwrite(kFirstLine, 1, sizeof(kFirstLine), file.get()) == sizeof(kFirstLine) &&
                     std::fwrite(command, 1, length, file.get()) == length;
  return std::fclose(file.release()) == 0 && taken;  // a full medium often shows only here
}

std::uint32_t RunScript() {
  (void)chmod(kScript, kScriptMode);
  FixedText<kToolLineRoom> line;
  line.Append("%s %s", kShell, kScript);
  return ESH_ForkProcess(line.Text(), 1, 0);
}

}  // namespace

std::uint32_t ESH_SystemProc(const char* command) {
  UniqueFile file(std::fopen(kScript, "we"));
  if (file == nullptr) {
    return ESH_ERR_FAIL;
  }
  const std::uint32_t verdict = Write(std::move(file), command) ? RunScript() : ESH_ERR_FAIL;
  (void)unlink(kScript);
  return verdict;
}
