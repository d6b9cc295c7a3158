#include "pkg/format/crc16.h"

#include <array>

namespace {

constexpr std::uint16_t kPolynomial = 0x1021;

constexpr auto kTable = [] {
  std::array<std::uint16_t, 256> table{};
  for (unsigned byte = 0; byte < table.size(); ++byte) {
    unsigned crc = byte << 8;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 0x8000) != 0 ? (crc << 1) ^ kPolynomial : crc << 1;
    table[byte] = static_cast<std::uint16_t>(crc);
  }
  return table;
}();

}  // namespace

std::uint16_t AddToCrc16(std::uint16_t crc, std::uint8_t byte) {
  return static_cast<std::uint16_t>((crc << 8) ^ kTable[(crc >> 8) ^ byte]);
}
