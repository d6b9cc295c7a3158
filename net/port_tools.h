#pragma once

#include <cstdint>

/// The tool lines that tell the kernel how the management port is set. Each runs to its end, which Ctrl+C cannot
/// hasten, and returns 0 when the tool succeeded, otherwise ESH_ERR_FAIL.

std::uint32_t ApplyIPv4Address(const char* address, const char* mask);
std::uint32_t RemoveIPv4Address();
std::uint32_t ApplyIPv6Address(const char* address, const char* prefix_length);
std::uint32_t RemoveIPv6Address(const char* address, const char* prefix_length);

std::uint32_t AddIPv4DefaultRoute(const char* gateway);
std::uint32_t RemoveIPv4DefaultRoute();
std::uint32_t AddIPv6DefaultRoute(const char* gateway);
std::uint32_t RemoveIPv6DefaultRoute();

std::uint32_t BringPortUp();
/// Takes the port's IPv4 address away and then the port down, the latter even if the former fails.
std::uint32_t TakePortDown();
