#include "net/shutdown.h"

#include <cstdio>

#include "net/management_port.h"
#include "net/port_tools.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

/// A port that is up tells its carrier; which one it tells is no matter.
bool IsCarrierKnown() {
  const UniqueFile carrier(std::fopen(kCarrierFile, "re"));
  char line[kCarrierLineRoom];
  return carrier != nullptr && std::fgets(line, sizeof(line), carrier.get()) != nullptr;
}

void ReapplySettings() {
  if (IsSaved(g_szMth0IPv4Add) && ApplyIPv4Address(g_szMth0IPv4Add, g_szMth0IPv4Mask) != kSuccess) ForgetIPv4Address();
  if (IsSaved(g_szMth0IPv6Add) && ApplyIPv6Address(g_szMth0IPv6Add, g_szMth0IPv6Per) != kSuccess) ForgetIPv6Address();
  // The gateway lies in the subnet of the address.
  if (IsSaved(g_szMth0IPv4Add) && IsSaved(g_szMth0IPv4Gateway) && AddIPv4DefaultRoute(g_szMth0IPv4Gateway) != kSuccess)
    ForgetIPv4Gateway();
  if (IsSaved(g_szMth0IPv6Gateway) && AddIPv6DefaultRoute(g_szMth0IPv6Gateway) != kSuccess) ForgetIPv6Gateway();
}

}  // namespace

std::uint32_t ESH_ProcShutdown() {
  if (IsPortShut()) return kSuccess;
  if (TakePortDown() != kSuccess) return ESH_ERR_FAIL;
  g_enMethStatus = ESH_METH_SHUT;
  return kSuccess;
}

std::uint32_t ESH_ProcUndoShutdown() { return ESH_RecoverConfig(); }

std::uint32_t ESH_RecoverConfig() {
  if (BringPortUp() != kSuccess) {
    std::puts(kOperationFailed);
    return ESH_ERR_FAIL;
  }
  if (IsCarrierKnown() && IsPortShut()) {
    g_enMethStatus = ESH_METH_UP;
    ReapplySettings();
  }
  return kSuccess;
}

std::uint32_t RecoverIfShut() { return IsPortShut() ? ESH_RecoverConfig() : kSuccess; }
