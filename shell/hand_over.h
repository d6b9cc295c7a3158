#pragma once

#include <sys/types.h>

#include <cstdint>

/// Writes 0 or 1 to the kernel's console switch: 1 while the shell has the console. The name is "Swich".
void SetTtySwich(std::int32_t on);

/// What the process that was started does: waits until the shell ends, tidies up and becomes the system's command
/// program. Returns only when that program cannot be executed.
void WaitAndHandOver(pid_t shell);
