#include "shell/tool_line.h"

#include "shell/child_process.h"
#include "shell/result.h"

std::uint32_t RunToolLine(const ToolLine& line, std::uint16_t ignoreInt, std::uint16_t echo) {
  return line.Truncated() ? ESH_ERR_FAIL : ESH_ForkProcess(line.Text(), ignoreInt, echo);
}
