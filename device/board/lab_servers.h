#pragma once

#include <string>

namespace device {

/// Starts the servers of the lab on the far side of m-eth0, in this process's namespaces; they end with them.
/// @param directory  what FTP and TFTP give out and receive; "": their own files.
/// @param place      an empty directory that becomes their root file system.
/// @return what an operator should know of the lab: lines about it, and about servers that did not start.
[[nodiscard]] std::string StartLabServers(const std::string& directory, const std::string& place);

}  // namespace device
