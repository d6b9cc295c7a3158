#pragma once

#include <cstdint>

/// "ipv6 address": sets the port's IPv6 address, g_szIPv6Address, with the prefix length g_szIPv6PreLen, in place of
/// the saved one, and brings the port up when it is shut down. Other addresses of the port stay, and so does the
/// gateway.
/// @return 0, also when the address is refused with a message; ESH_ERR_FAIL for a text that is none; else the result
/// of the tool.
std::uint32_t ESH_ProcIPv6AddrPreLen();

/// "undo ipv6 address": removes the saved IPv6 address, and brings the port up when it is shut down. @return 0.
std::uint32_t ESH_ProcUndoIPv6Addr();

/// Removes the saved IPv6 address, if there is one. It stays saved when the tool fails.
/// @return the result of the tool, 0 when none was needed.
std::uint32_t ESH_DeleteIPv6Addr();
