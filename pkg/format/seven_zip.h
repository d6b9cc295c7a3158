#pragma once

#include <cstdint>

/// Unpacks 7z data with the device's library, which is told neither length.
/// @param unpacked room for all of it.
/// @return the unpacked length, or 0 when there is no library or it fails.
[[nodiscard]] std::uint32_t ESH_deCompress7z(void* unpacked, const void* packed);
