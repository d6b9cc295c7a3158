#include "net/network_commands.h"
#include "shell/tool/script_file.h"
#include "shell/tool/tool_line.h"

namespace {

constexpr char kScript[] = "/var/tmp/TempFile";

}  // namespace

std::uint32_t ESH_SystemProc(const char* command) { return RunAsScript(kScript, command, RunTool); }
