#pragma once

#include "device/board/device_kind.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {

/// Is the first process of a native device: makes the root file system, opens the console, starts the shell, collects
/// processes and answers the launcher. Ends with the channel. Called in a process that is number 1 of a fresh PID
/// namespace.
[[noreturn]] void RunNativeFirstProcess(const BootOptions& options, const RootPlan& plan, PowerSupply supply);

}  // namespace device
