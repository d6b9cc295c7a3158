#pragma once

#include <cstdint>

/// "display ip routing-table": the tool writes straight to the terminal. @return its result.
std::uint32_t ESH_ProcDisIPGateway();

/// "display ipv6 routing-table": the same for IPv6, a page at a time. @return 0.
std::uint32_t ESH_ProcDisIPv6Gateway();
