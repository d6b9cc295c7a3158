#include "shell/tool/tool_line.h"

#include <csignal>

#include "shell/tool/child_process.h"
#include "util/result.h"

std::uint32_t RunTool(const char* line) { return ESH_ForkProcess(line, 1, 0); }

std::uint32_t RunTool(const ToolLine& line) { return line.Truncated() ? ESH_ERR_FAIL : RunTool(line.Text()); }

std::uint32_t RunStoppableTool(const ToolLine& line) {
  return line.Truncated() ? ESH_ERR_FAIL : ESH_ForkProcess(line.Text(), 0, 0);
}

std::uint32_t RunConnection(const ToolLine& line) {
  // "z" at telnet's own prompt makes the tool stop itself. The shell waits for its end and there is nobody to wake it:
  // the console would be lost. A signal that is ignored here stays ignored in the tool.
  const auto before = std::signal(SIGTSTP, SIG_IGN);
  const std::uint32_t verdict = line.Truncated() ? ESH_ERR_FAIL : ESH_ForkProcess(line.Text(), 1, 1);
  std::signal(SIGTSTP, before);
  return verdict;
}
