#include "pkg/format/package_source.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "util/unique_handle.h"

std::uint64_t SizeOfSource(const PackageSource& source) {
  if (source.usMode != kPackageInFile) return static_cast<std::uint64_t>(source.memory_end - source.memory);
  struct stat stat;
  return fstat(fileno(source.stream), &stat) == 0 ? static_cast<std::uint64_t>(stat.st_size) : 0;
}

bool SeekSource(PackageSource& source, std::uint64_t offset) {
  if (offset > SizeOfSource(source)) return false;
  if (source.usMode == kPackageInFile) return fseeko(source.stream, static_cast<off_t>(offset), SEEK_SET) == 0;
  source.cursor = source.memory + offset;
  return true;
}

bool ReadSource(PackageSource& source, void* bytes, std::size_t length) {
  if (source.usMode == kPackageInFile) return std::fread(bytes, 1, length, source.stream) == length;
  if (length > static_cast<std::size_t>(source.memory_end - source.cursor)) return false;
  std::memcpy(bytes, source.cursor, length);
  source.cursor += length;
  return true;
}

void* ReadBlockFromFile(PackageSource* source, std::uint64_t offset, std::uint64_t length) {
  const std::uint64_t size = SizeOfSource(*source);
  // Both numbers may be a forger's: nothing is allocated for what the package does not have.
  if (length == 0 || offset > size || length > size - offset || !SeekSource(*source, offset)) return nullptr;
  std::unique_ptr<void, MemoryFreer> block(std::malloc(length));
  if (block == nullptr || !ReadSource(*source, block.get(), length)) return nullptr;
  return block.release();
}
