#pragma once

#include <cstdint>

/// Handlers of "telnet": a connection to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcTelnet();
std::uint32_t ESH_ProcTelnetIPv6();
