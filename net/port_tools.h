#pragma once

#include <cstdint>

/// The tool lines that tell the kernel how the management port is set. Each runs to its end, which Ctrl+C cannot
/// hasten, and returns 0 when the tool succeeded, otherwise ESH_ERR_FAIL.

std::uint32_t ApplyIPv4Address(const char* address, const char* mask);            ///< in place of the present one
std::uint32_t RemoveIPv4Address();                                                ///< by setting 0.0.0.0
std::uint32_t ApplyIPv6Address(const char* address, const char* prefix_length);   ///< beside the present ones
std::uint32_t RemoveIPv6Address(const char* address, const char* prefix_length);  ///< one of them

std::uint32_t AddIPv4DefaultRoute(const char* gateway);  ///< by any port that reaches it
std::uint32_t RemoveIPv4DefaultRoute();                  ///< whatever its gateway
std::uint32_t AddIPv6DefaultRoute(const char* gateway);  ///< by the port, as a link-local gateway needs
std::uint32_t RemoveIPv6DefaultRoute();                  ///< whatever its gateway

/// Brings the port up; its addresses and routes are steps of their own.
std::uint32_t BringPortUp();
/// Takes the port's IPv4 address away and then the port down, the latter even if the former fails.
std::uint32_t TakePortDown();

/// Runs a shell command line, with redirections and all, as a script of the device's /bin/sh. Ctrl+C cannot break it
/// off.
/// @return 0 when the script succeeded, else ESH_ERR_FAIL; also when it could not be written, and then nothing ran.
std::uint32_t ESH_SystemProc(const char* command);
