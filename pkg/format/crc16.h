#pragma once

#include <cstdint>

/// Adds one byte to a CRC-16/XMODEM, which starts at 0.
[[nodiscard]] std::uint16_t AddToCrc16(std::uint16_t crc, std::uint8_t byte);
