#include "net/ipv4_address.h"

#include <arpa/inet.h>

#include <cstring>

#include "net/address_rules.h"
#include "net/gateway.h"
#include "net/management_port.h"
#include "net/port_tools.h"
#include "net/shutdown.h"
#include "shell/command/parameter.h"
#include "util/decimal.h"
#include "util/result.h"

namespace {

constexpr unsigned kAddressBits = 32;

std::uint32_t MaskOf(std::uint64_t length) { return length < kAddressBits ? ~(UINT32_MAX >> length) : UINT32_MAX; }

std::uint32_t SetIPv4Address(const char* mask) {
  const char* address = g_szIPv4Address;
  if (std::strcmp(address, g_szMth0IPv4Add) == 0 && std::strcmp(mask, g_szMth0IPv4Mask) == 0) return kSuccess;
  if (IsValidIPAddr(mask) == 0) return RefuseSetting(kInvalidIPv4Address);
  (void)ESH_DeleteIPv4Gateway();  // the kernel may have dropped the route by itself
  const std::uint32_t applied = IsPortShut() ? kSuccess : ApplyIPv4Address(address, mask);
  if (applied != kSuccess) return applied;
  ForgetIPv4Gateway();  // the routes of the old address go with it
  SaveIPv4Address(address, mask);
  return RecoverIfShut();
}

}  // namespace

std::uint32_t ESH_ProcIPAddrMaskLen() {
  std::uint64_t length = 0;
  (void)ReadDecimal(g_szIPv4MaskLen, length);  // no number is a mask that is refused
  const in_addr mask{htonl(MaskOf(length))};
  char text[INET_ADDRSTRLEN] = "";
  (void)inet_ntop(AF_INET, &mask, text, sizeof(text));  // there is room for every mask
  return SetIPv4Address(text);
}

std::uint32_t ESH_ProcIPAddrMask() { return SetIPv4Address(g_szIPv4Mask); }

std::uint32_t ESH_ProcUndoIPAddr() {
  if (!IsSaved(g_szMth0IPv4Add)) return kSuccess;
  (void)ESH_DeleteIPv4Addr();
  (void)RecoverIfShut();
  return kSuccess;
}

std::uint32_t ESH_DeleteIPv4Addr() {
  (void)ESH_DeleteIPv4Gateway();  // the kernel drops a route with the address that it needs
  const std::uint32_t removed = IsPortShut() ? kSuccess : RemoveIPv4Address();
  if (removed == kSuccess) ForgetIPv4Address();
  return removed;
}
