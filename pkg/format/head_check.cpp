#include "pkg/format/head_check.h"

#include <cstddef>

#include "pkg/format/crc16.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"

namespace {

constexpr std::uint32_t kSystemKindBit = 1;

/// The CRC is of the bytes as they are stored, whatever their order, so they are read once more.
bool CrcHolds(PKG_READER_S& reader) {
  if (!SeekSource(reader.source, 0)) return false;
  std::uint16_t crc = 0;
  for (std::size_t i = 0; i < offsetof(PackageMainHead, crc); ++i) {
    std::uint8_t byte = 0;
    if (!ReadSource(reader.source, &byte, 1)) return false;
    crc = AddToCrc16(crc, byte);
  }
  return reader.head.crc == crc;
}

}  // namespace

PackageVerdict JudgeMainHead(std::uint32_t is_system_kind, PKG_READER_S* reader, std::uint32_t product_code) {
  if (product_code == kUnknownTag || reader->head.product_tag != product_code) return PackageVerdict::kProductTag;
  const bool has_kind_bit = (reader->head.attributes & kSystemKindBit) != 0;
  if (has_kind_bit != (is_system_kind == 1)) return PackageVerdict::kKind;
  if (!CrcHolds(*reader)) return PackageVerdict::kHeadCrc;
  return reader->head.file_count > kMaxPackageFiles ? PackageVerdict::kTooManyFiles : PackageVerdict::kGood;
}

std::uint32_t MainHeadCheck(std::uint32_t is_system_kind, PKG_READER_S* reader) {
  return ResultOf(JudgeMainHead(is_system_kind, reader, ProductCode()));
}

PackageVerdict JudgePackage(PKG_READER_S* reader, std::uint32_t product_code, const char* key_directory) {
  // Only the word 1 counts as the kind of a system here: one with further bits set contradicts itself and is refused.
  const std::uint32_t is_system_kind = reader->head.attributes == 1 ? 1 : 0;
  const PackageVerdict verdict = JudgeMainHead(is_system_kind, reader, product_code);
  return verdict == PackageVerdict::kGood ? JudgeSignature(reader, key_directory) : verdict;
}

std::uint32_t CheckPackageHead(PKG_READER_S* reader) {
  return ResultOf(JudgePackage(reader, ProductCode(), kSignKeyDirectory));
}
