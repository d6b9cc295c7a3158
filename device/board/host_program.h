#pragma once

#include <optional>
#include <string>
#include <vector>

namespace device {

/// Runs a program of the host and waits for it.
/// @param words  the first is looked up in PATH.
/// @return what it wrote to standard output when it ended with status 0, otherwise nullopt.
std::optional<std::string> OutputOf(const std::vector<std::string>& words);

/// @return all that can be read from a descriptor until its other end is closed.
std::string ReadToEnd(int descriptor);

/// @return the path of a program of the host found in PATH or in the directories of system programs; "" when absent.
std::string FindProgram(const std::string& name);

}  // namespace device
