#pragma once

#include <cstddef>
#include <cstdint>

/// Components of an object identifier that are kept.
inline constexpr std::size_t kMaxObjectIdParts = 256;

/// Who sells the device, and under which names.
struct OEM_CONSUMER_INFO_S {
  std::uint64_t sysObjectID[kMaxObjectIdParts];
  std::uint32_t uiCorpId;  ///< index into the corporation tables; 0 is the maker
  char sysDescr[513];
  char sysContact[513];
  char sysLocation[513];
  char sysName[65];
  char productName[257];
  char corpName[257];
  std::uint8_t corpIDMac[6];
  std::uint8_t bridgeMac[6];
  std::uint8_t tolkMac[6];
};
