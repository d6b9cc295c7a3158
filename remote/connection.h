#pragma once

#include <cstdint>

#include "shell/tool/tool_line.h"

/// Runs a tool through which the operator works on another host. Keys that elsewhere would end or stop it are the other
/// host's; the terminal echoes as it did before the shell started.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL.
std::uint32_t RunConnection(const ToolLine& line);
