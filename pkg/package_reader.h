#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "pkg/package_format.h"
#include "pkg/verdict.h"

class PackageSeal;

inline constexpr std::uint16_t kPackageInFile = 1;  ///< PackageSource::usMode; any other value: in memory

/// Where a package's bytes come from.
struct PackageSource {
  std::uint16_t usMode;
  std::FILE* stream;
  std::uint8_t* memory;  ///< from malloc
  std::uint8_t* memory_end;
  std::uint8_t* cursor;
};

/// An open package. Zero-initialised when created.
struct PKG_READER_S {
  PackageMainHead head;  ///< in host order
  PackageSource source;
  char szPath[PATH_MAX];
  /// What was verified; none before. From then on only bytes that the signature was found to cover are handed out.
  PackageSeal* seal;
};

/// Opens a package and reads its main head. A symbolic link is followed; only a regular file is opened.
/// @param reader receives the package, for PackageReaderDestroy, or none.
/// @return kGood, or why it could not be opened.
[[nodiscard]] PackageVerdict OpenPackage(const char* path, PKG_READER_S*& reader);

/// OpenPackage for callers who need no reason. @return the package, for PackageReaderDestroy, or none.
[[nodiscard]] PKG_READER_S* PackageReadFileCreateByFile(const char* path);

/// Closes and frees a package; accepts none.
void PackageReaderDestroy(PKG_READER_S* reader);

struct PackageCloser {
  void operator()(PKG_READER_S* reader) const { PackageReaderDestroy(reader); }
};
using UniquePackage = std::unique_ptr<PKG_READER_S, PackageCloser>;

/// Reads a main head from the start of a stream and converts it. @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PKG_GetMainHeadByHandle(std::FILE* stream, PackageMainHead* head);
/// The same of a file. @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PKG_GetMainHeadByFileName(const char* path, PackageMainHead* head);

/// Reads a piece of a package.
/// @return exactly `length` bytes for free(), or none: beyond the end, nothing asked for, not readable, no memory.
[[nodiscard]] void* ReadBlockFromFile(PackageSource* source, std::uint64_t offset, std::uint64_t length);
