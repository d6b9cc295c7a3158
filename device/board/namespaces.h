#pragma once

#include <sys/types.h>

#include <string>

namespace device {

/// Leaves the host's namespaces: this process, which must be single-threaded, gets a mount, network, UTS and IPC
/// namespace of its own, and its next children a PID namespace.
/// @param with_users  a user namespace too, in which nobody has an identity before MapIdentities. Only root can do
///                    without.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string LeaveHost(bool with_users);

/// @return whether a line says that the host forbids a step, as these functions' lines do.
[[nodiscard]] bool TellsOfForbidding(const std::string& problem);

/// Gives a process in a fresh user namespace its users and groups, from the process that made it: root passes on all
/// ids that it has, up to 65535, where it has the right to; anybody else is root there and nobody else.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string MapIdentities(pid_t process);

/// Has nothing that is mounted in this process's fresh mount namespace from here on reach the host, and makes "/" a
/// mount of its own.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string PartMounts();

/// Mounts a file system. @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string Mount(const std::string& source, const std::string& target, const char* type,
                                unsigned long flags = 0, const std::string& data = {});

/// Makes a file or directory of the host's view visible at a second place; the target is made when it is missing.
[[nodiscard]] std::string BindMount(const std::string& source, const std::string& target);

/// Has this process killed when its parent ends in any way.
void DieWithParent();

}  // namespace device
