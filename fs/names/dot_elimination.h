#pragma once

#include <cstddef>
#include <cstdint>

/// Depths below which ".." may not climb: the root itself, and a medium ("/", "mnt", device).
inline constexpr std::uint32_t kRootFloor = 1;
inline constexpr std::uint32_t kMediumFloor = 3;

/// Resolves "." and ".." of a name by its text alone; a trailing "/" is dropped.
/// @param floor  the depth at which ".." is refused; the root counts as 1.
/// @param size   room of `output` in bytes.
/// @return 0, or ESH_ERR_FAIL: an empty component, a leading "." component, ".." at the floor, nothing left, or a
///         result that does not fit.
[[nodiscard]] std::uint32_t eliminatePoint(const char* name, std::uint32_t floor, std::size_t size, char* output);
