#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <cstdio>

#include "util/result.h"

/// Rules for the addresses that an operator types. Texts are in the notation of inet_pton(3).

inline constexpr char kInvalidIPv4Address[] = "Invalid IP address.\r";
inline constexpr char kInvalidIPv6Address[] = "Invalid IPv6 address.\r";

/// Prints why nothing is set. @return 0, which is then the command's result.
inline std::uint32_t RefuseSetting(const char* message) {
  std::puts(message);
  return kSuccess;
}

/// Whether a text is an IPv4 address that can be a peer: class A, B or C. Unlike an address of the port's own, it may
/// be a loopback address.
/// @return 1 for such an address, else 0.
[[nodiscard]] std::uint16_t ESH_IsValidUCAddr(const char* text);

/// Whether g_szIPv4Address is the address of a host, in class A to C, neither loopback nor network nor broadcast, under
/// a mask of 1 to 31 leading one-bits.
/// @return 1 when it is, else 0.
[[nodiscard]] std::uint16_t IsValidIPAddr(const char* mask);

/// Whether two IPv4 addresses lie in the same subnet. A text that is no address makes the answer no.
[[nodiscard]] bool IsSameSubnet(const char* address, const char* mask, const char* other);

/// Whether the port may have this IPv6 address: unicast beyond the link, not loopback, a host below the prefix.
/// @param prefix_length 0 to 128 bits; 128 leaves no host and is refused.
[[nodiscard]] bool IsUsableIPv6Address(const in6_addr& address, std::uint64_t prefix_length);

/// Whether a text is an IPv6 address in fe80::/10.
[[nodiscard]] bool IsLinkLocalText(const char* text);
