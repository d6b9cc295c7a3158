#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "device/arm64/lab_cable.h"
#include "util/unique_handle.h"

namespace device {

/// What an emulated machine is made of.
struct MachineParts {
  struct Disk {
    std::string image;          ///< file of the host with the disk's bytes
    std::string serial_number;  ///< at most 20 characters
  };

  std::string kernel;      ///< file of the host, likewise below
  std::string first_root;  ///< archive that the kernel unpacks as its root file system
  std::vector<Disk> disks;
  LabCable::Address port_address{};  ///< Ethernet address of its only network port
};

/// This side's ends of what leads into an emulated machine. All are sockets.
struct MachineLines {
  UniqueFd serial;
  UniqueFd guest;    ///< to the program that serves the host inside
  UniqueFd monitor;  ///< the emulator's own, in QMP
  UniqueFd network;  ///< frames of the machine's port
};

/// @return the emulator's path; "" when it is not installed.
std::string FindEmulator();

/// Starts the emulator, in a network namespace of its own, so that nothing of this machine can be reached. A machine
/// that restarts itself ends it; see MonitorTells.
/// @param log  where the emulator's own messages go.
/// @return its process, -1 when it could not be started.
pid_t StartEmulator(const MachineParts& parts, MachineLines& lines, int log);

/// @return what is said to the emulator's monitor to pull the cable out of the machine's port, or to put it in.
std::string CableCommand(bool is_plugged_in);

/// How a machine told the emulator to end.
enum class MachineEnd { kNone, kRestart, kPowerOff };

/// Reads an emulator's monitor.
/// @param received  all that the monitor said since the start.
MachineEnd MonitorTells(const std::string& received);

}  // namespace device
