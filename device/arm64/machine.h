#pragma once

#include <string>

#include "device/board/board.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {

/// Is an emulated machine of a kernel (a file of the host): makes its root file system, runs the emulator, passes on
/// its console, commands, and network frames, and ends with the emulator or with the channel. Called in a process that
/// is number 1 of a fresh PID namespace.
[[noreturn]] void RunMachine(const BootOptions& options, const KindFiles& files, const std::string& kernel,
                             PowerSupply supply);

}  // namespace device
