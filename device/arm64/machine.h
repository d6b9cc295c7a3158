#pragma once

#include "device/board/device_kind.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {

/// Files of the host that an emulated machine is made from, besides its root file system.
struct MachineFiles {
  std::string kernel;
  std::string tftp_directory;
};

/// Exit statuses of the process that is an emulated machine; any other is an accident.
constexpr int kMachineRestarted = 10;
constexpr int kMachinePoweredOff = 11;

/// Is an emulated machine: makes its root file system, runs the emulator, passes on its console, commands, and network
/// frames, and ends with the emulator or with the channel. Called in a process that is number 1 of a fresh PID
/// namespace.
[[noreturn]] void RunMachine(const BootOptions& options, const RootPlan& plan, const MachineFiles& files,
                             PowerSupply supply);

}  // namespace device
