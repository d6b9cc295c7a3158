#pragma once

#include <cstdint>

/// Runs a shell command line, with redirections and all, as a script of the device's /bin/sh. Ctrl+C cannot break it
/// off.
/// @return 0 when the script succeeded, else ESH_ERR_FAIL; also when it could not be written, and then nothing ran.
std::uint32_t ESH_SystemProc(const char* command);
