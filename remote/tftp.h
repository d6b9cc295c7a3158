#pragma once

#include <cstdint>

/// Handlers of "tftp": transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcTftpget();
std::uint32_t ESH_ProcTftpput();
std::uint32_t ESH_ProcTftpIPv6get();
std::uint32_t ESH_ProcTftpIPv6put();
