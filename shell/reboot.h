#pragma once

#include <cstdint>

/// Registers "reboot" in the user view.
void ESH_Reboot_Init();

/// Asks, then reboots. @return 0 when the answer was no, else the result of the reboot tool.
std::uint32_t ESH_ProcReboot();

/// Reboots without asking. @return the result of the reboot tool, when the device is still there.
std::uint32_t ESH_Reboot();

/// Replaces the shell by the reboot tool, for a shell that has no terminal and so cannot start a tool in a child.
/// Returns only when the tool cannot be executed.
void BecomeReboot();
