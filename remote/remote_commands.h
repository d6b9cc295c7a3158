#pragma once

#include <cstdint>

/// Registers the commands that reach other hosts; on a device without an IP stack there are none.
void ESH_Protocol_Init();

/// Handlers of "telnet": a connection to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcTelnet();
std::uint32_t ESH_ProcTelnetIPv6();

/// Handlers of "ssh2": ask for the user name and connect to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcSsh2();
std::uint32_t ESH_ProcSsh2IPv6();

/// Handler of "reset ssh public-key": forgets the keys by which known servers are recognised. Prints nothing.
std::uint32_t ESH_ProcResetPublicKeySsh();

/// Handlers of "ftp": ask for user name and password and transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcFtpget();
std::uint32_t ESH_ProcFtpput();
std::uint32_t ESH_ProcFtpIPv6get();
std::uint32_t ESH_ProcFtpIPv6put();

/// Handlers of "tftp": transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcTftpget();
std::uint32_t ESH_ProcTftpput();
std::uint32_t ESH_ProcTftpIPv6get();
std::uint32_t ESH_ProcTftpIPv6put();

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
