#pragma once

#include <sys/types.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "util/unique_handle.h"

namespace device {

/// Blocks these signals and no others. @return a non-blocking descriptor from which they are read as they come.
UniqueFd CatchSignals(std::initializer_list<int> numbers);

/// Takes all signals that came. @return whether one was SIGUSR1.
bool DrainSignals(const UniqueFd& signals);

/// Has this process killed when its parent ends in any way.
void DieWithParent();

/// Moves descriptors onto 0, 1, 2 and so on, in this order, and closes all others.
void KeepOnly(const std::vector<int>& descriptors);

/// Replaces this process, a fresh child, by a program. Returns only by ending the process.
/// @param words        the first is looked up in PATH.
/// @param environment  "NAME=value" each; none: this process's own.
/// @param descriptors  become 0, 1, 2 and so on; all others are closed.
[[noreturn]] void ExecuteProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment,
                                 const std::vector<int>& descriptors);

/// @return the exit status that a shell would tell: 128 + number when a signal ended the process.
int ExitStatusOf(int wait_status);

/// Runs a program until it ends and nothing that it left behind has its output open.
/// @param output   receives what was written to standard output and to standard error.
/// @param prepare  called in the new process first.
/// @return whether it ended with status 0.
[[nodiscard]] bool RunProgram(const std::vector<std::string>& words, std::string& output, void (*prepare)() = nullptr);

/// @return all bytes of a file; none when it cannot be read.
[[nodiscard]] std::string FileBytes(const std::string& path);

/// @return all that was written to an open file, whoever wrote it.
[[nodiscard]] std::string ContentsOf(const UniqueFd& file);

}  // namespace device
