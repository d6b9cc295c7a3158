#include <archive.h>
#include <archive_entry.h>
#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <memory>

/// The device's library for 7z, made with libarchive. Its interface tells no lengths: that of the packed data stands in
/// their own head, that of the unpacked data in their index. Both may lie, for not all that is unpacked was verified.
/// The caller's buffers come from malloc(3), which knows how large they are.

namespace {

/// The signature head of a 7z file: where its index is, counted from the end of this head, and how long it is.
constexpr std::uint8_t kSignature[] = {'7', 'z', 0xBC, 0xAF, 0x27, 0x1C};
constexpr std::size_t kHeadSize = 32;
constexpr std::size_t kIndexOffset = 12;
constexpr std::size_t kIndexSize = 20;

struct ArchiveFreer {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using UniqueArchive = std::unique_ptr<archive, ArchiveFreer>;

std::uint64_t ReadLittle64(const std::uint8_t* bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = sizeof(value); i > 0; --i) value = value << 8 | bytes[i - 1];
  return value;
}

/// @param room size of the buffer with the packed data, in bytes.
/// @return the length of the packed data, or 0 when they are no 7z file or not all there.
std::size_t PackedLength(const std::uint8_t* packed, std::size_t room) {
  if (room < kHeadSize) return 0;
  for (std::size_t i = 0; i < sizeof(kSignature); ++i)
    if (packed[i] != kSignature[i]) return 0;
  const std::uint64_t offset = ReadLittle64(packed + kIndexOffset);
  const std::uint64_t size = ReadLittle64(packed + kIndexSize);
  const bool fits = offset <= room - kHeadSize && size <= room - kHeadSize - offset;
  return fits ? kHeadSize + offset + size : 0;
}

}  // namespace

/// Unpacks the first file of a 7z archive.
/// @return its length, or 0 when the archive is damaged, holds no file or a larger one than there is room for.
extern "C" __attribute__((visibility("default"))) std::uint32_t deCompress7z(void* unpacked, const void* packed) {
  const std::size_t packed_room = malloc_usable_size(const_cast<void*>(packed));
  const std::size_t length = PackedLength(static_cast<const std::uint8_t*>(packed), packed_room);
  const UniqueArchive reader(archive_read_new());
  archive_entry* entry = nullptr;
  if (length == 0 || reader == nullptr || archive_read_support_format_7zip(reader.get()) != ARCHIVE_OK ||
      archive_read_open_memory(reader.get(), packed, length) != ARCHIVE_OK ||
      archive_read_next_header(reader.get(), &entry) != ARCHIVE_OK)
    return 0;
  const std::int64_t size = archive_entry_size(entry);
  const std::size_t wanted = static_cast<std::size_t>(size);
  if (size <= 0 || wanted > malloc_usable_size(unpacked) || wanted > UINT32_MAX) return 0;
  return archive_read_data(reader.get(), unpacked, wanted) == size ? static_cast<std::uint32_t>(size) : 0;
}
