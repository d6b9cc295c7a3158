#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "pkg/format/package_format.h"
#include "pkg/format/package_source.h"
#include "pkg/format/verdict.h"

class PackageSeal;

/// Room of an open package's stream: an eighth of the system calls that the C library's own would take to read all of a
/// package.
inline constexpr std::size_t kStreamRoom = 32768;

/// An open package. Zero-initialised when created.
struct PKG_READER_S {
  PackageMainHead head;  ///< in host order
  PackageSource source;
  char szPath[PATH_MAX];
  /// What was verified; none before. From then on only bytes that the signature was found to cover are handed out.
  PackageSeal* seal;
  char stream_buffer[kStreamRoom];
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
