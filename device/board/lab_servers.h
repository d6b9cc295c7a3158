#pragma once

#include <string>
#include <vector>

#include "device/device.h"

namespace device {

/// Starts the servers on the far side of m-eth0, in this process's namespaces; they end with them.
/// @param place        an empty directory that becomes their root file system.
/// @param environment  "NAME=value" for all that is started.
/// @return what an operator should know of the lab: lines about it, and about servers that did not start.
[[nodiscard]] std::string StartLabServers(const BootOptions& options, const std::string& place,
                                          const std::vector<std::string>& environment);

/// @return files and directories of the host that the servers are made from.
[[nodiscard]] std::vector<std::string> NeededByLabServers(const BootOptions& options);

}  // namespace device
