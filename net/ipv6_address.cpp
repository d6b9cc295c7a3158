#include "net/ipv6_address.h"

#include <arpa/inet.h>

#include <cstring>

#include "net/address_rules.h"
#include "net/management_port.h"
#include "net/port_tools.h"
#include "net/shutdown.h"
#include "shell/command/parameter.h"
#include "util/decimal.h"
#include "util/result.h"

std::uint32_t ESH_ProcIPv6AddrPreLen() {
  in6_addr address{};
  if (inet_pton(AF_INET6, g_szIPv6Address, &address) != 1) return ESH_ERR_FAIL;
  if (std::strcmp(g_szIPv6Address, g_szMth0IPv6Add) == 0 && std::strcmp(g_szIPv6PreLen, g_szMth0IPv6Per) == 0)
    return kSuccess;
  std::uint64_t prefix_length = 0;
  if (!ReadDecimal(g_szIPv6PreLen, prefix_length) || !IsUsableIPv6Address(address, prefix_length))
    return RefuseSetting(kInvalidIPv6Address);
  (void)ESH_DeleteIPv6Addr();  // the kernel may have lost it
  const std::uint32_t applied = IsPortShut() ? kSuccess : ApplyIPv6Address(g_szIPv6Address, g_szIPv6PreLen);
  if (applied != kSuccess) return applied;
  SaveIPv6Address(g_szIPv6Address, g_szIPv6PreLen);
  return RecoverIfShut();
}

std::uint32_t ESH_ProcUndoIPv6Addr() {
  if (!IsSaved(g_szMth0IPv6Add)) return kSuccess;
  (void)ESH_DeleteIPv6Addr();
  (void)RecoverIfShut();
  return kSuccess;
}

std::uint32_t ESH_DeleteIPv6Addr() {
  const bool is_applied = IsSaved(g_szMth0IPv6Add) && !IsPortShut();
  const std::uint32_t removed = is_applied ? RemoveIPv6Address(g_szMth0IPv6Add, g_szMth0IPv6Per) : kSuccess;
  if (removed == kSuccess) ForgetIPv6Address();
  return removed;
}
