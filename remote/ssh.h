#pragma once

#include <cstdint>

/// Handlers of "ssh2": ask for the user name and connect to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcSsh2();
std::uint32_t ESH_ProcSsh2IPv6();

/// Handler of "reset ssh public-key": forgets the keys by which known servers are recognised. Prints nothing.
std::uint32_t ESH_ProcResetPublicKeySsh();
