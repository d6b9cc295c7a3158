#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

inline constexpr std::uint16_t kPackageInFile = 1;  ///< PackageSource::usMode; any other value: in memory

/// Where a package's bytes come from.
struct PackageSource {
  std::uint16_t usMode;
  std::FILE* stream;
  std::uint8_t* memory;  ///< from malloc
  std::uint8_t* memory_end;
  std::uint8_t* cursor;
};

/// The length of the package in bytes, as it is now.
[[nodiscard]] std::uint64_t SizeOfSource(const PackageSource& source);

/// Sets where ReadSource goes on. @return false when it cannot stand there.
[[nodiscard]] bool SeekSource(PackageSource& source, std::uint64_t offset);

/// Reads exactly `length` bytes. @return false when there are fewer.
[[nodiscard]] bool ReadSource(PackageSource& source, void* bytes, std::size_t length);

/// Reads a piece of a package.
/// @return exactly `length` bytes for free(), or none: beyond the end, nothing asked for, not readable, no memory.
[[nodiscard]] void* ReadBlockFromFile(PackageSource* source, std::uint64_t offset, std::uint64_t length);
