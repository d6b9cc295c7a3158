#pragma once

#include <cstdint>

/// Registers the commands that reach other hosts; on a device without an IP stack there are none.
void ESH_Protocol_Init();

/// Handlers of "telnet": a connection to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcTelnet();      ///< IPv4
std::uint32_t ESH_ProcTelnetIPv6();  ///< IPv6

/// Handlers of "ssh2": ask for the user name and connect to the recorded address, which Ctrl+C does not break off.
std::uint32_t ESH_ProcSsh2();      ///< IPv4
std::uint32_t ESH_ProcSsh2IPv6();  ///< IPv6

/// Handler of "reset ssh public-key": forgets the keys by which known servers are recognised. Prints nothing.
std::uint32_t ESH_ProcResetPublicKeySsh();

/// Handlers of "ftp": ask for user name and password and transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcFtpget();      ///< g_szRemoteFile comes
std::uint32_t ESH_ProcFtpput();      ///< g_szLocalFile goes
std::uint32_t ESH_ProcFtpIPv6get();  ///< the same over IPv6
std::uint32_t ESH_ProcFtpIPv6put();  ///< the same over IPv6

/// Handlers of "tftp": transfer one file, which Ctrl+C breaks off.
std::uint32_t ESH_ProcTftpget();      ///< g_szRemoteFile comes
std::uint32_t ESH_ProcTftpput();      ///< g_szLocalFile goes
std::uint32_t ESH_ProcTftpIPv6get();  ///< the same over IPv6
std::uint32_t ESH_ProcTftpIPv6put();  ///< the same over IPv6

/// Handlers of "ping", one for each order of its options: "_c" with a count of requests, "_s" with their size. They
/// end with the tool, which Ctrl+C breaks off.
std::uint32_t ESH_ProcPing();         ///< five requests of the usual size
std::uint32_t ESH_ProcPing_c();       ///< g_szCount
std::uint32_t ESH_ProcPing_s();       ///< g_szSize
std::uint32_t ESH_ProcPing_cs();      ///< both
std::uint32_t ESH_ProcPing_sc();      ///< both
std::uint32_t ESH_ProcPingIPv6();     ///< to g_szIPv6Address, here and below
std::uint32_t ESH_ProcPingIPv6_c();   ///< g_szCount
std::uint32_t ESH_ProcPingIPv6_s();   ///< g_szSize
std::uint32_t ESH_ProcPingIPv6_cs();  ///< both
std::uint32_t ESH_ProcPingIPv6_sc();  ///< both
