#include "net/address_rules.h"

#include <arpa/inet.h>

#include <bit>

#include "shell/command/parameter.h"

namespace {

constexpr std::uint32_t kLoopbackOctet = 127;
constexpr std::uint32_t kFirstOctetOfClassD = 224;
constexpr unsigned kIPv6Bits = 128;

/// @param address in host order. @return false for a text that is no address.
bool ReadIPv4(const char* text, std::uint32_t& address) {
  in_addr parsed{};
  if (inet_pton(AF_INET, text, &parsed) != 1) return false;
  address = ntohl(parsed.s_addr);
  return true;
}

std::uint32_t FirstOctet(std::uint32_t address) { return address >> 24; }

/// Class A, B or C; all of 0.0.0.0/8 is left out.
bool IsUnicast(std::uint32_t address) { return FirstOctet(address) > 0 && FirstOctet(address) < kFirstOctetOfClassD; }

/// One-bits first, then zero-bits; without some of each it leaves no host.
bool IsSubnetMask(std::uint32_t mask) { return std::popcount(mask) == std::countl_one(mask); }

/// A part of no bits is 0, which neither part of a host's address is.
bool IsHostOfSubnet(std::uint32_t address, std::uint32_t mask) {
  const std::uint32_t host = address & ~mask;
  const std::uint32_t network = address & mask;
  return host != 0 && host != ~mask && network != 0 && network != mask;
}

bool HasHostBits(const in6_addr& address, std::uint64_t prefix_length) {
  for (std::uint64_t bit = prefix_length; bit < kIPv6Bits; ++bit)
    if ((address.s6_addr[bit / 8] & (0x80U >> bit % 8)) != 0) return true;
  return false;
}

}  // namespace

std::uint16_t ESH_IsValidUCAddr(const char* text) {
  std::uint32_t address = 0;
  return ReadIPv4(text, address) && IsUnicast(address) ? 1 : 0;
}

std::uint16_t IsValidIPAddr(const char* mask) {
  std::uint32_t address = 0;
  std::uint32_t mask_bits = 0;
  if (!ReadIPv4(g_szIPv4Address, address) || !ReadIPv4(mask, mask_bits)) return 0;
  if (!IsUnicast(address) || FirstOctet(address) == kLoopbackOctet) return 0;
  return IsSubnetMask(mask_bits) && IsHostOfSubnet(address, mask_bits) ? 1 : 0;
}

bool IsSameSubnet(const char* address, const char* mask, const char* other) {
  std::uint32_t address_bits = 0;
  std::uint32_t mask_bits = 0;
  std::uint32_t other_bits = 0;
  return ReadIPv4(address, address_bits) && ReadIPv4(mask, mask_bits) && ReadIPv4(other, other_bits) &&
         ((address_bits ^ other_bits) & mask_bits) == 0;
}

bool IsUsableIPv6Address(const in6_addr& address, std::uint64_t prefix_length) {
  return HasHostBits(address, prefix_length) && !IN6_IS_ADDR_MULTICAST(&address) && !IN6_IS_ADDR_LOOPBACK(&address) &&
         !IN6_IS_ADDR_LINKLOCAL(&address);
}

bool IsLinkLocalText(const char* text) {
  in6_addr address{};
  return inet_pton(AF_INET6, text, &address) == 1 && IN6_IS_ADDR_LINKLOCAL(&address);
}
