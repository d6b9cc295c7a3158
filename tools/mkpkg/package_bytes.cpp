#include "tools/mkpkg/package_bytes.h"

#include <endian.h>

#include <cstring>

#include "pkg/format/crc16.h"
#include "pkg/format/package_format.h"

namespace mkpkg {

std::uint32_t GetWord(std::string_view bytes, std::size_t offset, bool host_order) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, sizeof(word));
  return host_order ? word : be32toh(word);
}

void PutWord(std::string& bytes, std::size_t offset, std::uint32_t value, bool host_order) {
  const std::uint32_t word = host_order ? value : htobe32(value);
  std::memcpy(bytes.data() + offset, &word, sizeof(word));
}

bool HasMainHead(std::string_view bytes) {
  return bytes.size() >= kMainHeadSize &&
         (IsHostOrder(bytes) || GetWord(bytes, offsetof(PackageMainHead, byte_order)) == kBigEndianOrder);
}

bool IsHostOrder(std::string_view package) {
  return GetWord(package, offsetof(PackageMainHead, byte_order)) == kHostOrder;
}

void RenewHeadCrc(std::string& package) {
  std::uint16_t crc = 0;
  for (const char byte : std::string_view(package).substr(0, offsetof(PackageMainHead, crc)))
    crc = AddToCrc16(crc, static_cast<std::uint8_t>(byte));
  PutWord(package, offsetof(PackageMainHead, crc), crc, IsHostOrder(package));
}

}  // namespace mkpkg
