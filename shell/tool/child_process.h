#pragma once

#include <sys/types.h>

#include <cstdint>

/// Process id of the running tool, -1 when none runs. Read by the SIGINT handler.
extern std::int32_t g_EShSubPid;
/// The shell's own process group, noted before each fork; -1 before the first.
extern std::int32_t g_iShellGid;

/// Runs one tool in a child that owns the terminal, and waits until it ends.
/// @param cmdline   words split at blanks, no quoting; the first is the tool's absolute path. Not kept.
/// @param ignoreInt 1: the tool ignores Ctrl+C; any other value: Ctrl+C ends the tool, never the shell.
/// @param echo      1: the terminal echoes as it did before the shell started; any other value: echo is off.
/// @return 0 when the tool exited with status 0, otherwise ESH_ERR_FAIL (also when it could not be started).
std::uint32_t ESH_ForkProcess(const char* cmdline, std::uint16_t ignoreInt, std::uint16_t echo);

/// Waits until a child ends, however often a signal interrupts the wait.
/// @return 0 when it exited with status 0, otherwise ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t ResultOfChild(pid_t child);

/// Makes a process group the foreground group of the terminal on descriptor 2. @return 0 or ESH_ERR_FAIL.
std::uint32_t SetPgtp(pid_t pgrp);

/// @return 1 while a tool runs.
[[nodiscard]] std::uint16_t ESH_IsForkSubProcess();

/// Sends a signal to the running tool's process (not its group), if there is one. Safe in a signal handler.
void ESH_Sig2SubProcess(int sig);

/// Ends a running tool with its whole group and takes the terminal back.
void ESH_CloseSubProcess();

/// Ends a running tool and puts the terminal back as it was found. The caller then ends the process.
void ESH_Exit();
