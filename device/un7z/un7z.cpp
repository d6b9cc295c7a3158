#include <archive.h>
#include <archive_entry.h>

#include <cstddef>
#include <cstdint>
#include <memory>

/// The device's library for 7z, made with libarchive. Its interface tells no lengths: that of the packed data stands in
/// their own head, and the caller gives room for all that they hold.

namespace {

/// The signature head of a 7z file: where its index is, counted from the end of this head, and how long it is.
constexpr std::uint8_t kSignature[] = {'7', 'z', 0xBC, 0xAF, 0x27, 0x1C};
constexpr std::size_t kHeadSize = 32;
constexpr std::size_t kIndexOffset = 12;
constexpr std::size_t kIndexSize = 20;
/// A package's own lengths have 32 bits.
constexpr std::uint64_t kMaxLength = 0xFFFFFFFF;

struct ArchiveFreer {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using UniqueArchive = std::unique_ptr<archive, ArchiveFreer>;

std::uint64_t ReadLittle64(const std::uint8_t* bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = sizeof(value); i > 0; --i) {
    value = value << 8 | bytes[i - 1];
  }
  return value;
}

/// @return the length of the packed data, or 0 when they are no 7z file.
std::size_t PackedLength(const std::uint8_t* packed) {
  for (std::size_t i = 0; i < sizeof(kSignature); ++i) {
    if (packed[i] != kSignature[i]) {
      return 0;
    }
  }
  const std::uint64_t offset = ReadLittle64(packed + kIndexOffset);
  const std::uint64_t size = ReadLittle64(packed + kIndexSize);
  return offset > kMaxLength || size > kMaxLength - offset ? 0 : kHeadSize + offset + size;
}

}  // namespace

/// Unpacks the first file of a 7z archive.
/// @return its length, or 0 when the archive is damaged or holds no file.
extern "C" __attribute__((visibility("default"))) std::uint32_t deCompress7z(void* unpacked, const void* packed) {
  const std::size_t length = PackedLength(static_cast<const std::uint8_t*>(packed));
  const UniqueArchive reader(archive_read_new());
  archive_entry* entry = nullptr;
  if (length == 0 || reader == nullptr || archive_read_support_format_7zip(reader.get()) != ARCHIVE_OK ||
      archive_read_open_memory(reader.get(), packed, length) != ARCHIVE_OK ||
      archive_read_next_header(reader.get(), &entry) != ARCHIVE_OK) {
    return 0;
  }
  const std::int64_t size = archive_entry_size(entry);
  if (size <= 0 || static_cast<std::uint64_t>(size) > kMaxLength) {
    return 0;
  }
  const std::size_t wanted = static_cast<std::size_t>(size);
  return archive_read_data(reader.get(), unpacked, wanted) == size ? static_cast<std::uint32_t>(size) : 0;
}
