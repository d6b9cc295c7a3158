#include "net/gateway.h"

#include <cstring>

#include "net/address_rules.h"
#include "net/management_port.h"
#include "net/port_tools.h"
#include "shell/command/parameter.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kInvalidGateway[] = "The gateway is invalid.\r";
constexpr char kUnreachable[] = "The gateway is unreachable.\r";
constexpr char kNotLinkLocal[] = "The gateway address must be link-local address.\r";

}  // namespace

std::uint32_t ESH_ProcIPGateway() {
  const char* gateway = g_szIPv4Address;
  if (std::strcmp(gateway, g_szMth0IPv4Gateway) == 0) return kSuccess;
  // Without a saved address there is no mask either.
  if (IsValidIPAddr(g_szMth0IPv4Mask) == 0) return RefuseSetting(kInvalidGateway);
  if (!IsSameSubnet(g_szMth0IPv4Add, g_szMth0IPv4Mask, gateway)) return RefuseSetting(kUnreachable);
  (void)ESH_DeleteIPv4Gateway();  // the kernel may have dropped the route by itself
  const std::uint32_t applied = IsPortShut() ? kSuccess : AddIPv4DefaultRoute(gateway);
  if (applied == kSuccess) CopyText(g_szMth0IPv4Gateway, gateway);
  return applied;
}

std::uint32_t ESH_ProcIPv6Gateway() {
  const char* gateway = g_szIPv6Address;
  if (!IsLinkLocalText(gateway)) return RefuseSetting(kNotLinkLocal);
  if (std::strcmp(gateway, g_szMth0IPv6Gateway) == 0) return kSuccess;
  (void)ESH_DeleteIPv6Gateway();  // the kernel may have dropped the route by itself
  const std::uint32_t applied = IsPortShut() ? kSuccess : AddIPv6DefaultRoute(gateway);
  if (applied == kSuccess) CopyText(g_szMth0IPv6Gateway, gateway);
  return applied;
}

std::uint32_t ESH_DeleteIPv4Gateway() {
  const bool is_applied = IsSaved(g_szMth0IPv4Gateway) && !IsPortShut();
  const std::uint32_t removed = is_applied ? RemoveIPv4DefaultRoute() : kSuccess;
  if (removed == kSuccess) ForgetIPv4Gateway();
  return removed;
}

std::uint32_t ESH_DeleteIPv6Gateway() {
  const bool is_applied = IsSaved(g_szMth0IPv6Gateway) && !IsPortShut();
  const std::uint32_t removed = is_applied ? RemoveIPv6DefaultRoute() : kSuccess;
  if (removed == kSuccess) ForgetIPv6Gateway();
  return removed;
}

std::uint32_t ESH_ProcUndoIPGateway() { return ESH_DeleteIPv4Gateway(); }

std::uint32_t ESH_ProcUndoIPv6Gateway() { return ESH_DeleteIPv6Gateway(); }
