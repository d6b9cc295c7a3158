#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// A kernel setting is known by the numbers of its path. It is reached through the `sysctl` system call, or where the
/// running system has no such call, as text in the file of that path below /proc/sys ({7, 8, 1} is /proc/sys/7/8/1).

/// Writes a whole number to a setting.
/// @return 0, or ESH_ERR_FAIL when there is no such setting, or it refuses the value.
std::uint32_t WriteKernelSetting(std::span<const int> path, int value);

/// Reads a setting that is a text, without the line end that its file adds.
/// @param size room of `text` in bytes, at least 1; a longer text is cut. Terminated, and empty on a failure.
/// @return 0, or ESH_ERR_FAIL when there is no such setting.
[[nodiscard]] std::uint32_t ReadKernelText(std::span<const int> path, std::size_t size, char* text);

/// Reads a setting that is a row of numbers, an object identifier for example. Its file has them in dotted decimal.
/// @param count in: room of `numbers`; out: how many were read, 0 on a failure. A longer row is cut.
/// @return 0, or ESH_ERR_FAIL when there is no such setting or it is no row of numbers.
[[nodiscard]] std::uint32_t ReadKernelNumbers(std::span<const int> path, std::size_t& count, std::uint64_t* numbers);
