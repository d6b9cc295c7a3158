#pragma once

#include <cstddef>
#include <cstdint>

/// What the device's kernel tells about the product. A failure is ESH_ERR_FAIL: the kernel does not tell.

/// Room for the boot image name.
inline constexpr std::size_t kBootImageNameRoom = 65;

/// @param size in: room of `parts` in bytes; out: bytes used, 8 for each component of the object identifier.
[[nodiscard]] std::uint32_t ESH_GetSysObjectID(std::size_t& size, std::uint64_t* parts);

/// The boot image's file, with its medium, such as "flash:/boot.bin"; empty on a failure.
/// @param name room for kBootImageNameRoom bytes.
std::uint32_t ESH_GetBootImageName(char* name);

/// A few lines on the device's hardware and versions; empty on a failure.
/// @param size room of `text` in bytes.
std::uint32_t ESH_GetBriefVerInfo(std::size_t size, char* text);
