#pragma once

#include <cstdint>

/// Registers "system-view", "interface m-eth0" (on a device with an IP stack) and "quit".
void ESH_ChangeView_Init();

/// The handlers of these commands; all return 0.
std::uint32_t ESH_ProcSysView();
std::uint32_t ESH_ProcMthView();
std::uint32_t ESH_ProcQuit();
