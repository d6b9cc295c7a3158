#pragma once

#include <sys/types.h>

#include <string>

namespace device {

/// Forks into a mount, network, UTS, IPC and PID namespace of the child's own, whose process number 1 it is. This
/// process must be single-threaded.
/// @param with_users  a user namespace too, in which nobody has an identity before MapIdentities. Only root can do
///                    without.
/// @return as fork does.
pid_t ForkApart(bool with_users);

/// @return the line that says what the host forbids, from errno, and what allows it.
[[nodiscard]] std::string Forbidden(const std::string& what);

/// @return whether a line says that the host forbids a step, as these functions' lines do.
[[nodiscard]] bool TellsOfForbidding(const std::string& problem);

/// Gives a process in a fresh user namespace its users and groups, from the process that made it: root passes on all
/// ids that it has, up to 65535, where it has the right to; anybody else is root there and nobody else.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string MapIdentities(pid_t process);

/// The same for a process of one user and one group, from itself or from the process that made it.
[[nodiscard]] std::string MapOneIdentity(pid_t process, uid_t user, gid_t group);

/// Has nothing that is mounted in this process's fresh mount namespace from here on reach the host, and makes "/" a
/// mount of its own.
/// @return an empty text, or one line that says what the host forbids.
[[nodiscard]] std::string PartMounts();

/// Mounts a file system. @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string Mount(const std::string& source, const std::string& target, const char* type,
                                unsigned long flags = 0, const std::string& data = {});

/// Makes a file or directory of the host's view visible at a second place; the target is made when it is missing.
[[nodiscard]] std::string BindMount(const std::string& source, const std::string& target);

}  // namespace device
