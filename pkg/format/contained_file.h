#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "pkg/format/package_reader.h"
#include "util/unique_handle.h"

/// Owns a contained file's head.
using UniqueFileHead = std::unique_ptr<PackageFileHead, MemoryFreer>;

/// Reads the head of a contained file.
/// @return the head in host order, for free(), or none: it does not agree with its row of the table, is not covered by
///         the signature of a verified package, or cannot be read.
[[nodiscard]] PackageFileHead* FileHeadCreateByFileDesc(PKG_READER_S* reader, const PackageFileEntry* entry);

/// Reads a contained file and unpacks it.
/// @param name_size room of `out_name` in bytes.
/// @param out_size  receives the length of the data, 0 for none.
/// @param out_name  receives the file's name, cut to its room; may be none.
/// @return the data for free(), or none: no head (see above), nothing stored, an unknown compression, or a library for
///         unpacking that fails.
[[nodiscard]] void* GetFileFromReadHeadByFileDesc(const PackageFileEntry* entry, PKG_READER_S* reader,
                                                  std::size_t name_size, std::uint32_t* out_size, char* out_name);

/// @return the first row of the table with an ID, or none.
[[nodiscard]] const PackageFileEntry* FindFile(const PKG_READER_S& reader, std::uint32_t file_id);

/// Reads the first contained file of an ID. @return as above, also none when there is no such file.
[[nodiscard]] void* GetFileFromReaderHeadByFileID(std::uint32_t file_id, PKG_READER_S* reader, std::uint32_t* out_size);
