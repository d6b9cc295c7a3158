#pragma once

#include <cstdint>

struct VEC_S;

/// Runs tools for package commands. Unlike the shell's other tools they have no terminal to themselves, and neither
/// Ctrl+C nor a console that hangs up ends them: half an unpacked system would be worse than the wait.

/// Splits a text at blanks and tabs. @return its words, for ParserVecFree (shell/tool/argument_list.h), or none when
/// memory is short.
[[nodiscard]] VEC_S* PKG_ParserVecAlloc(const char* text);

/// Runs one program and waits until it ends.
/// @param commandLine split at blanks and tabs, without quotes; the first word is the program's absolute path.
/// @return 0 when it exited with status 0, otherwise ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PKG_System(const char* commandLine);

/// Runs a command line of /bin/sh, through a script file that exists only meanwhile. @return as above.
[[nodiscard]] std::uint32_t PKG_SystemProc(const char* scriptBody);

/// Removes a file with /bin/rm, whatever its name holds. @return as above.
[[nodiscard]] std::uint32_t RemoveWithTool(const char* path);
