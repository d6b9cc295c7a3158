#include "shell/tool/script_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "shell/tool/tool_line.h"
#include "util/new_file.h"
#include "util/result.h"

namespace {

constexpr char kInterpreter[] = "/bin/sh";
constexpr char kFirstLine[] = "#!/bin/sh\r\n";  // written with its NUL, which the interpreter skips
constexpr mode_t kScriptMode = 0666;

bool WriteScript(const char* path, const char* command) {
  UniqueFd script(CreateAnew(path, kScriptMode));
  // The mode also counts where the file-creation mask would cut it. A full medium may show only at the end.
  return script && fchmod(script.Get(), kScriptMode) == 0 && WriteAll(script.Get(), kFirstLine, sizeof(kFirstLine)) &&
         WriteAll(script.Get(), command, std::strlen(command)) && close(script.Release()) == 0;
}

}  // namespace

std::uint32_t RunAsScript(const char* path, const char* command, RunProgramFn run) {
  ToolLine line;
  line.Append("%s %s", kInterpreter, path);
  // Half a script is never run.
  const std::uint32_t result = WriteScript(path, command) ? run(line.Text()) : ESH_ERR_FAIL;
  (void)unlink(path);  // an absent script is what is wanted
  return result;
}
