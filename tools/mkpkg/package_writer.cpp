#include "tools/mkpkg/package_writer.h"

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <limits>

#include "pkg/format/package_format.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/new_file.h"

namespace mkpkg {
namespace {

constexpr std::uint64_t kMaxPackage = std::numeric_limits<std::uint32_t>::max();  // offsets are 32-bit words

std::string ReasonAgainst(const PackageContents& contents) {
  if (contents.files.size() > kMaxPackageFiles) {
    return "a package holds at most " + std::to_string(kMaxPackageFiles) + " files, not " +
           std::to_string(contents.files.size());
  }
  for (const PackageFile& file : contents.files) {
    if (file.name.size() >= kContainedNameRoom)
      return "the name " + file.name + " is longer than " + std::to_string(kContainedNameRoom - 1) + " bytes";
    if (file.name.find('\0') != std::string::npos) return "a name holds a NUL byte";
  }
  return "";
}

template <typename Record>
std::string_view BytesOf(const Record& record) {
  return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

/// What was stored of a file.
struct Stored {
  std::uint64_t size = 0;
  std::uint32_t crc = 0;
};

/// Stores a file's data from the descriptor's offset on. @param end receives where they end.
std::string StoreData(PackageFile& file, int fd, std::uint64_t& end, Stored& stored) {
  const Sink store = [&](std::string_view piece) -> std::string {
    stored.size += piece.size();
    end += piece.size();
    stored.crc =
        static_cast<std::uint32_t>(crc32_z(stored.crc, reinterpret_cast<const Bytef*>(piece.data()), piece.size()));
    if (end > kMaxPackage) return "the package would be larger than 4 GB";
    return WriteAll(fd, piece.data(), piece.size()) ? "" : kCannotWriteData;
  };
  return file.feed ? file.feed(file, store) : store(file.data);
}

PackageFileHead FileHead(const PackageFile& file, const Stored& stored, bool host_order) {
  PackageFileHead head{};
  const auto size = static_cast<std::uint32_t>(stored.size);
  head.check_a = file.id;
  head.device_code = file.device_code;
  head.stored_size = size;
  head.unpacked_size = file.packing == kStoredAsIs ? size : file.unpacked_size;
  head.byte_order = host_order ? kHostOrder : kBigEndianOrder;
  std::copy(file.name.begin(), file.name.end(), head.name);
  head.data_length = size;
  head.check_b = stored.crc;
  head.compression = file.packing;
  return head;
}

PackageFileEntry EntryOf(const PackageFileHead& head, std::uint32_t id, std::size_t offset) {
  PackageFileEntry entry{};
  entry.file_id = id;
  entry.head_offset = static_cast<std::uint32_t>(offset);
  entry.total_length = head.data_length + static_cast<std::uint32_t>(kFileHeadSize);
  entry.check_b = head.check_b;
  entry.check_a = head.check_a;
  return entry;
}

}  // namespace

std::string WritePackage(const PackageContents& contents, int fd) {
  if (std::string reason = ReasonAgainst(contents); !reason.empty()) return reason;
  PackageMainHead head{};
  std::uint64_t end = kMainHeadSize;
  for (PackageFile file : contents.files) {
    const std::uint64_t begin = end;
    end += kFileHeadSize;
    if (lseek(fd, static_cast<off_t>(end), SEEK_SET) < 0) return kCannotWriteData;
    Stored stored;
    if (std::string problem = StoreData(file, fd, end, stored); !problem.empty()) return problem;
    PackageFileHead file_head = FileHead(file, stored, contents.host_order);
    head.files[head.file_count++] = EntryOf(file_head, file.id, begin);
    if (!contents.host_order) ConvertFileHead(file_head);
    if (!WriteAt(fd, begin, BytesOf(file_head))) return kCannotWriteData;
  }
  head.product_tag = contents.product_tag;
  head.minimum_payload = static_cast<std::uint32_t>(end - kMainHeadSize);
  head.signature_format = contents.signature_format;
  head.byte_order = contents.host_order ? kHostOrder : kBigEndianOrder;
  head.attributes = contents.attribute;
  head.package_type = contents.type;
  if (!contents.host_order) ConvertMainHead(head, head.file_count);
  std::string bytes(BytesOf(head));
  RenewHeadCrc(bytes);
  return WriteAt(fd, 0, bytes) ? "" : kCannotWriteData;
}

std::string ComposePackage(const PackageContents& contents, std::string& package) {
  package.clear();
  return InMemory(package, [&](int fd) { return WritePackage(contents, fd); });
}

}  // namespace mkpkg
