#pragma once

#include <cstdint>

/// "display interface m-eth0": state, addresses, hardware address and counters of the management port.
/// @return ESH_ERR_FAIL, after a message, when the kernel tells nothing about the port.
std::uint32_t ESH_ProcDisInterface();
