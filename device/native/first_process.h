#pragma once

#include <string>

#include "device/device.h"
#include "device/native/channel.h"
#include "device/native/root_files.h"

namespace device {

/// What the first process of a device gets from the board it is on.
struct PowerSupply {
  std::string empty_directory;  // where its root file system is made
  std::string media_directory;  // holds one mounted directory for each medium
  Channel channel;              // to the launcher
};

/// Is the first process of a device: makes the root file system, opens the console, starts the shell, collects
/// processes and answers the launcher. Ends with the channel. Called in a process that is number 1 of a fresh PID
/// namespace.
[[noreturn]] void RunFirstProcess(const BootOptions& options, const RootPlan& plan, PowerSupply supply);

}  // namespace device
