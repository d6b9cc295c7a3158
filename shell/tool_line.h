#pragma once

#include <cstddef>
#include <cstdint>

#include "util/fixed_text.h"

inline constexpr std::size_t kToolLineRoom = 2048;

/// The command line of a tool: words split at blanks, the first one its absolute path.
using ToolLine = FixedText<kToolLineRoom>;

/// Runs a tool as ESH_ForkProcess does (shell/child_process.h), unless its line was cut: half a line would be another
/// command.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunToolLine(const ToolLine& line, std::uint16_t ignoreInt, std::uint16_t echo);
