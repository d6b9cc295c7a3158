#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "util/unique_handle.h"

namespace device {

/// What an emulated machine is made of.
struct MachineParts {
  struct Disk {
    std::string image;          ///< file of the host with the disk's bytes
    std::string serial_number;  ///< at most 20 characters
  };

  std::string kernel;     ///< file of the host
  std::string directory;  ///< holds first-root.cpio, which the kernel unpacks; receives emulator.log and console.log
  std::vector<Disk> disks;
};

/// This side's ends of what leads into an emulated machine; all but the console's are sockets.
struct MachineLines {
  UniqueFd serial;    ///< the console's line, a terminal, which the emulator opens again
  UniqueFd commands;  ///< to /sbin/serve-host
  UniqueFd events;    ///< from /init
  UniqueFd monitor;   ///< the emulator's own, in QMP
};

/// Starts the emulator, in a network namespace of its own, so that nothing of this machine can be reached, and what
/// carries its port's frames to the lab, in whose network namespace this process is. A machine that restarts itself
/// ends the emulator.
/// @param lines  holds the console's line; receives the others.
/// @return the emulator's process, -1 when it could not be started.
pid_t StartEmulator(const MachineParts& parts, MachineLines& lines);

/// @return what is said to the emulator's monitor to pull the cable out of the machine's port, or to put it in.
std::string CableCommand(bool is_plugged_in);

}  // namespace device
