#pragma once

#include <cstdint>

/// Handlers of "ftp": ask for user name and password and transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcFtpget();
std::uint32_t ESH_ProcFtpput();
std::uint32_t ESH_ProcFtpIPv6get();
std::uint32_t ESH_ProcFtpIPv6put();
