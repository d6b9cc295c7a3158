#include "tools/mkpkg/package_bytes.h"

#include <endian.h>

#include <cstring>

#include "tools/mkpkg/package_layout.h"

namespace mkpkg {
namespace {

/// CRC-16/XMODEM.
std::uint16_t Crc16(std::string_view bytes) {
  constexpr unsigned kPolynomial = 0x1021;
  unsigned crc = 0;
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned>(static_cast<unsigned char>(byte)) << 8;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 0x8000) != 0 ? (crc << 1) ^ kPolynomial : crc << 1;
  }
  return static_cast<std::uint16_t>(crc);
}

}  // namespace

std::uint32_t GetWord(std::string_view bytes, std::size_t offset, bool host_order) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, sizeof(word));
  return host_order ? word : be32toh(word);
}

void PutWord(std::string& bytes, std::size_t offset, std::uint32_t value, bool host_order) {
  const std::uint32_t word = host_order ? value : htobe32(value);
  std::memcpy(bytes.data() + offset, &word, sizeof(word));
}

bool IsHostOrder(std::string_view package) { return GetWord(package, kByteOrderAt) == kHostOrder; }

void RenewHeadCrc(std::string& package) {
  const std::uint16_t crc = Crc16(std::string_view(package).substr(0, kHeadCrcAt));
  PutWord(package, kHeadCrcAt, crc, IsHostOrder(package));
}

}  // namespace mkpkg
