#include "net/system_proc.h"

#include "shell/script_file.h"
#include "shell/tool_line.h"

namespace {

constexpr char kScript[] = "/var/tmp/TempFile";

}  // namespace

std::uint32_t ESH_SystemProc(const char* command) { return RunAsScript(kScript, command, RunTool); }
