#pragma once

#include <cstdint>

/// Registers the commands of the management port: its settings in the interface view, its displays in every view.
void ESH_Network_Init();

/// "display interface m-eth0": state, addresses, hardware address and counters of the management port.
/// @return ESH_ERR_FAIL, after a message, when the kernel tells nothing about the port.
std::uint32_t ESH_ProcDisInterface();

/// "display ip routing-table": the tool writes straight to the terminal. @return its result.
std::uint32_t ESH_ProcDisIPGateway();

/// "display ipv6 routing-table": the same for IPv6, a page at a time. @return 0.
std::uint32_t ESH_ProcDisIPv6Gateway();
