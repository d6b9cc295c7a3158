#pragma once

#include <cstdint>

inline constexpr char kIpStackModule[] = "/lib/modules/ipstack.ko";

/// Whether the device has an IP stack, and with it the management interface: looked up afresh at every call.
/// @return 1 when the module's file exists, else 0.
[[nodiscard]] std::uint16_t ESH_IsExistIpstackKo();
