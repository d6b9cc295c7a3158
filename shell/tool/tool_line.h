#pragma once

#include <cstddef>
#include <cstdint>

#include "util/fixed_text.h"

inline constexpr std::size_t kToolLineRoom = 2048;

/// The command line of a tool: words split at blanks, the first one its absolute path.
using ToolLine = FixedText<kToolLineRoom>;

/// Runs a tool without echo (ESH_ForkProcess, shell/child_process.h); Ctrl+C does not end it. A line that was cut is
/// not run: half a line would be another command.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunTool(const char* line);
std::uint32_t RunTool(const ToolLine& line);

/// Likewise, but Ctrl+C ends the tool.
std::uint32_t RunStoppableTool(const ToolLine& line);
