#pragma once

#include <string>
#include <vector>

#include "device/device.h"

namespace device {

/// Where the shell stands on a device.
constexpr char kShellPath[] = "/sbin/esh";

/// @return the shell's path and arguments.
std::vector<std::string> ShellWords(const BootOptions& options);

/// @return the shell's environment, "NAME=value" each.
std::vector<std::string> ShellEnvironment(const BootOptions& options);

/// @return the environment of commands that run beside the shell.
std::vector<std::string> CommandEnvironment();

}  // namespace device
