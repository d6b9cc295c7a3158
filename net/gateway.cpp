#include "net/gateway.h"

#include <cstdio>
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
  if (IsValidIPAddr(g_szMth0IPv4Mask) == 0) {  // without a saved address there is no mask either
    std::puts(kInvalidGateway);
    return kSuccess;
  }
  if (!IsSameSubnet(g_szMth0IPv4Add, g_szMth0IPv4Mask, gateway)) {
    std::puts(kUnreachable);
    return kSuccess;
  }
  (void)ESH_DeleteIPv4Gateway();  // the kernel may have dropped the route by itself
  const std::uint32_t applied = IsPortShut() ? kSuccess : AddIPv4DefaultRoute(gateway);
  if (applied != kSuccess) return applied;
  CopyText(g_szMth0IPv4Gateway, gateway);
  return kSuccess;
}

std::uint32_t ESH_ProcIPv6Gateway() {
  const char* gateway = g_szIPv6Address;
  if (!IsLinkLocalText(gateway)) {
    std::puts(kNotLinkLocal);
    return kSuccess;
  }
  if (std::strcmp(gateway, g_szMth0IPv6Gateway) == 0) return kSuccess;
  if (!IsPortShut()) {
    (void)ESH_DeleteIPv6Gateway();  // the kernel may have dropped the route by itself
    const std::uint32_t applied = AddIPv6DefaultRoute(gateway);
    if (applied != kSuccess) return applied;
  }
  CopyText(g_szMth0IPv6Gateway, gateway);
  return kSuccess;
}

std::uint32_t ESH_DeleteIPv4Gateway() {
  if (!IsSaved(g_szMth0IPv4Gateway)) return kSuccess;
  const std::uint32_t removed = IsPortShut() ? kSuccess : RemoveIPv4DefaultRoute();
  if (removed != kSuccess) return removed;
  ForgetIPv4Gateway();
  return kSuccess;
}

std::uint32_t ESH_DeleteIPv6Gateway() {
  if (!IsSaved(g_szMth0IPv6Gateway)) return kSuccess;
  const std::uint32_t removed = IsPortShut() ? kSuccess : RemoveIPv6DefaultRoute();
  if (removed != kSuccess) return removed;
  ForgetIPv6Gateway();
  return kSuccess;
}

std::uint32_t ESH_ProcUndoIPGateway() { return ESH_DeleteIPv4Gateway(); }

std::uint32_t ESH_ProcUndoIPv6Gateway() { return ESH_DeleteIPv6Gateway(); }
