#pragma once

#include <endian.h>

#include <cstdint>
#include <span>

/// Conversions between big-endian and host order: the same step both ways.

/// A 16-bit number, such as the CRC of a head.
inline std::uint16_t FromBig16(std::uint16_t value) { return be16toh(value); }

/// A 32-bit number.
inline std::uint32_t FromBig32(std::uint32_t value) { return be32toh(value); }

/// All numbers of a head in place; text is no number and stays.
inline void FromBig32(std::span<std::uint32_t> words) {
  for (std::uint32_t& word : words) word = FromBig32(word);
}
