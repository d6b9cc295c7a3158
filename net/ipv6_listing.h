#pragma once

#include <netinet/in.h>

#include <cstdio>

/// One line of the kernel's list of IPv6 addresses.
struct IPv6Entry {
  char address[INET6_ADDRSTRLEN] = "";  ///< as inet_ntop(3) writes it
  unsigned prefix_length = 0;
  unsigned scope = 0;  ///< the kernel's number for how far the address reaches
  char interface[21] = "";
};

inline constexpr char kIPv6ListingFile[] = "/proc/net/if_inet6";

/// Reads the next address. @return false at the end of the list, and at a line that does not belong to one.
[[nodiscard]] bool ReadIPv6Entry(std::FILE* listing, IPv6Entry& entry);
