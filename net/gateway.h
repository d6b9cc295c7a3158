#pragma once

#include <cstdint>

/// "ip gateway": sets the IPv4 default gateway, g_szIPv4Address, which must be a host of the saved subnet.
/// @return 0, also when the gateway is refused with a message; else the result of the tool.
std::uint32_t ESH_ProcIPGateway();

/// "ipv6 gateway": sets the IPv6 default gateway, g_szIPv6Address, which must be link-local. Results as above.
std::uint32_t ESH_ProcIPv6Gateway();

/// Remove a default gateway, if one is saved. It stays saved when the tool fails.
/// @return the result of the tool, 0 when none was needed.
std::uint32_t ESH_DeleteIPv4Gateway();  ///< g_szMth0IPv4Gateway
std::uint32_t ESH_DeleteIPv6Gateway();  ///< g_szMth0IPv6Gateway

std::uint32_t ESH_ProcUndoIPGateway();    ///< "undo ip gateway"
std::uint32_t ESH_ProcUndoIPv6Gateway();  ///< "undo ipv6 gateway"
