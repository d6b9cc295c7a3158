#include "remote/host_address.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdio>

#include "net/address_rules.h"
#include "shell/command/parameter.h"
#include "util/result.h"

namespace {

bool ReadAddress(in6_addr& address) { return inet_pton(AF_INET6, g_szIPv6Address, &address) == 1; }

}  // namespace

Refusal CheckIPv4Host() {
  if (ESH_IsValidUCAddr(g_szIPv4Address) == 1) return std::nullopt;
  std::puts(kInvalidIPv4Address);
  return ESH_ERR_FAIL;
}

Refusal CheckIPv6Text() {
  in6_addr address;
  return ReadAddress(address) ? Refusal() : ESH_ERR_FAIL;
}

Refusal CheckIPv6Host(const char* message) {
  in6_addr address;
  if (!ReadAddress(address)) return ESH_ERR_FAIL;
  if (!IN6_IS_ADDR_UNSPECIFIED(&address)) return std::nullopt;
  std::puts(message);
  return kSuccess;  // unlike an IPv4 address that is refused
}
