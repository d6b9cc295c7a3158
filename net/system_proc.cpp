#include "net/system_proc.h"

#include "shell/child_process.h"
#include "shell/script_file.h"

namespace {

constexpr char kScript[] = "/var/tmp/TempFile";

std::uint32_t RunForeground(const char* command_line) { return ESH_ForkProcess(command_line, 1, 0); }

}  // namespace

std::uint32_t ESH_SystemProc(const char* command) { return RunAsScript(kScript, command, RunForeground); }
