#pragma once

#include <cstddef>
#include <cstdint>

#include "util/fixed_text.h"

inline constexpr std::size_t kToolLineRoom = 2048;

/// The command line of a tool: words split at blanks, the first one its absolute path.
using ToolLine = FixedText<kToolLineRoom>;

/// Runs a tool without echo; Ctrl+C does not end it. A line that was cut is not run: half a line would be another
/// command.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunTool(const char* line);
/// The same for a line that was built.
std::uint32_t RunTool(const ToolLine& line);

/// As RunTool, but Ctrl+C ends the tool.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunStoppableTool(const ToolLine& line);

/// Runs a tool through which the operator works on another host. Keys that elsewhere would end or stop it are the other
/// host's; the terminal echoes as it did before the shell started.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunConnection(const ToolLine& line);
