#pragma once

#include <cstdint>

/// Runs the command line of a program and tells how it ended: 0 or ESH_ERR_FAIL.
using RunProgramFn = std::uint32_t (*)(const char* command_line);

/// Runs a command line of the device's /bin/sh, with redirections and all, as a script file that exists only meanwhile.
/// @param path of the script; what has that name is replaced.
/// @param run  runs the interpreter.
/// @return its result, or ESH_ERR_FAIL: the script could not be written, and then nothing ran.
std::uint32_t RunAsScript(const char* path, const char* command, RunProgramFn run);
