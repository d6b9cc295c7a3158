#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// The shell as a program of its own, started from its first line to its prompt, on a Console.

inline constexpr char kMachine[] = "/host";  ///< where the private root keeps the machine's
inline constexpr char kPrompt[] = "<boot>";

/// Enters a private root that is a device whose start-up script is empty, whose modules are loaded, whose one medium is
/// "flash:", and whose only tool is busybox.
void PrepareDevice();

/// @return the shell's path in the private root. @param program its path on the machine.
[[nodiscard]] std::string ShellOnDevice(const char* program);

/// Becomes another program. @param words its absolute path and its arguments. Returns only when it cannot be started.
void Execute(std::vector<std::string> words);

/// Becomes the shell. It takes the console by itself, which it could not while this session holds it.
void BecomeShell(const std::vector<std::string>& command);

/// Ends a process and all that it started: the shell is not the console's own child.
void EndFamily(pid_t process);
