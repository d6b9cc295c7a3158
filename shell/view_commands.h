#pragma once

#include <cstdint>

/// Registers "system-view", "interface m-eth0" (on a device with an IP stack) and "quit".
void ESH_ChangeView_Init();

/// The handlers of these commands; all return 0.
std::uint32_t ESH_ProcSysView();  ///< to the system view, with a message
std::uint32_t ESH_ProcMthView();  ///< to the management port's view
std::uint32_t ESH_ProcQuit();     ///< to the view from which this one is entered
