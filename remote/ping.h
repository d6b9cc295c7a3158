#pragma once

#include <cstdint>

/// Handlers of "ping", one for each order of its options: "_c" with a count of requests, "_s" with their size. They
/// end with the tool, which Ctrl+C breaks off.
std::uint32_t ESH_ProcPing();
std::uint32_t ESH_ProcPing_c();
std::uint32_t ESH_ProcPing_s();
std::uint32_t ESH_ProcPing_cs();
std::uint32_t ESH_ProcPing_sc();
std::uint32_t ESH_ProcPingIPv6();
std::uint32_t ESH_ProcPingIPv6_c();
std::uint32_t ESH_ProcPingIPv6_s();
std::uint32_t ESH_ProcPingIPv6_cs();
std::uint32_t ESH_ProcPingIPv6_sc();
