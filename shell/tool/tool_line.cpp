#include "shell/tool/tool_line.h"

#include "shell/tool/child_process.h"
#include "util/result.h"

std::uint32_t RunTool(const char* line) { return ESH_ForkProcess(line, 1, 0); }

std::uint32_t RunTool(const ToolLine& line) { return line.Truncated() ? ESH_ERR_FAIL : RunTool(line.Text()); }

std::uint32_t RunStoppableTool(const ToolLine& line) {
  return line.Truncated() ? ESH_ERR_FAIL : ESH_ForkProcess(line.Text(), 0, 0);
}
