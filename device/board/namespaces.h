#pragma once

#include <sys/types.h>

#include <string>

namespace device {

/// Leaves the host's namespaces: this process, which must be single-threaded, gets a user, mount, network, UTS and IPC
/// namespace of its own, and its next children a PID namespace. No user or group has an identity in it
/// before MapIdentities.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string LeaveHost();

/// Gives a process in a fresh user namespace its users and groups, from the process that made it: root passes on all
/// ids that it has, up to 65535, anybody else is root there and nobody else.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string MapIdentities(pid_t process);

/// Mounts a file system. @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string Mount(const std::string& source, const std::string& target, const char* type,
                                unsigned long flags = 0, const std::string& data = {});

/// Makes a file or directory of the host's view visible at a second place; the target is made when it is missing.
[[nodiscard]] std::string BindMount(const std::string& source, const std::string& target);

/// Has this process killed when its parent ends in any way.
void DieWithParent();

}  // namespace device
