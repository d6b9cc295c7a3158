#include "pkg/format/package_reader.h"

#include <cstdlib>

#include "pkg/format/byte_order.h"
#include "pkg/format/package_seal.h"
#include "util/fixed_text.h"
#include "util/regular_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

PackageVerdict ReadMainHead(PackageSource& source, PackageMainHead& head) {
  if (!SeekSource(source, 0) || !ReadSource(source, &head, sizeof(head))) return PackageVerdict::kNoMainHead;
  if (head.byte_order != kBigEndianOrder && head.byte_order != kHostOrder) return PackageVerdict::kByteOrder;
  const bool host_order = head.byte_order == kHostOrder;
  const std::uint32_t file_count = host_order ? head.file_count : FromBig32(head.file_count);
  if (file_count > kMaxPackageFiles) return PackageVerdict::kTooManyFiles;
  if (!host_order) ConvertMainHead(head, file_count);
  return PackageVerdict::kGood;
}

}  // namespace

PackageVerdict OpenPackage(const char* path, PKG_READER_S*& reader) {
  reader = nullptr;
  UniqueFile stream = OpenRegularFile(path, Links::kFollow, nullptr);
  if (stream == nullptr) return PackageVerdict::kCannotOpen;
  UniquePackage package(static_cast<PKG_READER_S*>(std::calloc(1, sizeof(PKG_READER_S))));
  if (package == nullptr) return PackageVerdict::kNoMemory;
  package->source.usMode = kPackageInFile;
  package->source.stream = stream.release();  // closed with the package
  std::setvbuf(package->source.stream, package->stream_buffer, _IOFBF, sizeof(package->stream_buffer));
  const PackageVerdict verdict = ReadMainHead(package->source, package->head);
  if (verdict != PackageVerdict::kGood) return verdict;
  if (!CopyText(package->szPath, path)) return PackageVerdict::kCannotOpen;
  reader = package.release();
  return PackageVerdict::kGood;
}

PKG_READER_S* PackageReadFileCreateByFile(const char* path) {
  PKG_READER_S* reader = nullptr;
  return OpenPackage(path, reader) == PackageVerdict::kGood ? reader : nullptr;
}

void PackageReaderDestroy(PKG_READER_S* reader) {
  if (reader == nullptr) return;
  if (reader->source.usMode != kPackageInFile)
    std::free(reader->source.memory);
  else
    std::fclose(reader->source.stream);
  delete reader->seal;
  std::free(reader);
}

std::uint32_t PKG_GetMainHeadByHandle(std::FILE* stream, PackageMainHead* head) {
  PackageSource source = {};
  source.usMode = kPackageInFile;
  source.stream = stream;
  return ReadMainHead(source, *head) == PackageVerdict::kGood ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t PKG_GetMainHeadByFileName(const char* path, PackageMainHead* head) {
  const UniqueFile stream = OpenRegularFile(path, Links::kFollow, nullptr);
  return stream == nullptr ? ESH_ERR_FAIL : PKG_GetMainHeadByHandle(stream.get(), head);
}
