#include "pkg/format/contained_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>

#include "pkg/format/package_seal.h"
#include "pkg/format/seven_zip.h"
#include "util/fixed_text.h"

namespace {

using UniqueBlock = std::unique_ptr<void, MemoryFreer>;

/// Reads a piece of the package; of a verified one, only if it is still what was verified.
UniqueBlock ReadTrusted(PKG_READER_S& reader, std::uint64_t offset, std::uint64_t length) {
  UniqueBlock block(ReadBlockFromFile(&reader.source, offset, length));
  if (block != nullptr && reader.seal != nullptr && !reader.seal->Holds(offset, block.get(), length)) return nullptr;
  return block;
}

UniqueBlock Unpack(const PackageFileHead& head, UniqueBlock stored, std::uint32_t& size) {
  if (head.compression == kStoredAsIs) {
    size = head.stored_size;
    return stored;
  }
  if (head.compression != kPacked7z || head.unpacked_size == 0) return nullptr;
  UniqueBlock unpacked(std::malloc(head.unpacked_size));
  if (unpacked == nullptr) return nullptr;
  size = ESH_deCompress7z(unpacked.get(), stored.get());
  const bool plausible = size > 0 && size <= head.unpacked_size;
  return plausible ? std::move(unpacked) : nullptr;
}

}  // namespace

PackageFileHead* FileHeadCreateByFileDesc(PKG_READER_S* reader, const PackageFileEntry* entry) {
  UniqueFileHead head(static_cast<PackageFileHead*>(ReadTrusted(*reader, entry->head_offset, kFileHeadSize).release()));
  if (head == nullptr) return nullptr;
  if (head->byte_order != kHostOrder) ConvertFileHead(*head);
  const bool agrees = entry->check_a == head->check_a && entry->check_b == head->check_b &&
                      entry->total_length == std::uint64_t{head->data_length} + kFileHeadSize;
  return agrees ? head.release() : nullptr;
}

void* GetFileFromReadHeadByFileDesc(const PackageFileEntry* entry, PKG_READER_S* reader, std::size_t name_size,
                                    std::uint32_t* out_size, char* out_name) {
  *out_size = 0;
  const UniqueFileHead head(FileHeadCreateByFileDesc(reader, entry));
  if (head == nullptr) return nullptr;
  UniqueBlock stored = ReadTrusted(*reader, std::uint64_t{entry->head_offset} + kFileHeadSize, head->stored_size);
  if (stored == nullptr) return nullptr;
  std::uint32_t size = 0;
  UniqueBlock data = Unpack(*head, std::move(stored), size);
  if (data == nullptr) return nullptr;
  *out_size = size;
  (void)CopyBounded(out_name, name_size, {head->name, strnlen(head->name, sizeof(head->name))});
  return data.release();
}

const PackageFileEntry* FindFile(const PKG_READER_S& reader, std::uint32_t file_id) {
  const auto files = std::span(reader.head.files).first(reader.head.file_count);
  const auto entry = std::ranges::find(files, file_id, &PackageFileEntry::file_id);
  return entry == files.end() ? nullptr : &*entry;
}

void* GetFileFromReaderHeadByFileID(std::uint32_t file_id, PKG_READER_S* reader, std::uint32_t* out_size) {
  *out_size = 0;
  const PackageFileEntry* entry = FindFile(*reader, file_id);
  return entry == nullptr ? nullptr : GetFileFromReadHeadByFileDesc(entry, reader, 0, out_size, nullptr);
}
