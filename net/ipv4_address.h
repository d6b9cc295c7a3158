#pragma once

#include <cstdint>

/// "ip address" with a mask length: sets the port's IPv4 address, g_szIPv4Address, under g_szIPv4MaskLen. A changed
/// address drops the IPv4 gateway, and brings the port up when it is shut down.
/// @return 0, also when the address is refused with a message; else the result of the tool.
std::uint32_t ESH_ProcIPAddrMaskLen();

/// "ip address" with a dotted mask: as above, under g_szIPv4Mask.
std::uint32_t ESH_ProcIPAddrMask();

/// "undo ip address": removes the saved IPv4 address and gateway, and brings the port up when it is shut down.
/// @return 0.
std::uint32_t ESH_ProcUndoIPAddr();

/// Removes the port's IPv4 gateway and address. The address stays saved when its tool fails.
/// @return the result of the address's tool, 0 while the port is shut down.
std::uint32_t ESH_DeleteIPv4Addr();
