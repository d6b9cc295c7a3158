#pragma once

#include <cstdint>
#include <span>

/// Writes a whole number to a kernel setting that is known by the numbers of its path, through the `sysctl` system
/// call, or where the running system has no such call, through the file of that path below /proc/sys
/// ({7, 8, 1} is /proc/sys/7/8/1).
/// @return 0, or ESH_ERR_FAIL when there is neither, or the setting refuses the value.
std::uint32_t WriteKernelSetting(std::span<const int> path, int value);
