#include "tools/mkpkg/package_writer.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "pkg/format/package_format.h"
#include "tools/mkpkg/package_bytes.h"

namespace mkpkg {
namespace {

constexpr std::uint64_t kMaxPackage = std::numeric_limits<std::uint32_t>::max();  // offsets are 32-bit words

std::string ReasonAgainst(const PackageContents& contents) {
  if (contents.files.size() > kMaxPackageFiles) {
    return "a package holds at most " + std::to_string(kMaxPackageFiles) + " files, not " +
           std::to_string(contents.files.size());
  }
  std::uint64_t size = kMainHeadSize;
  for (const PackageFile& file : contents.files) {
    size += kFileHeadSize + file.data.size();
    if (file.name.size() >= kContainedNameRoom)
      return "the name " + file.name + " is longer than " + std::to_string(kContainedNameRoom - 1) + " bytes";
    if (file.name.find('\0') != std::string::npos) return "a name holds a NUL byte";
  }
  return size > kMaxPackage ? "the package would be larger than 4 GB" : "";
}

template <typename Record>
std::string_view BytesOf(const Record& record) {
  return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

PackageFileHead FileHead(const PackageFile& file, bool host_order) {
  PackageFileHead head{};
  const auto size = static_cast<std::uint32_t>(file.data.size());
  head.check_a = file.id;
  head.device_code = file.device_code;
  head.stored_size = size;
  head.unpacked_size = file.packing == kStoredAsIs ? size : file.unpacked_size;
  head.byte_order = host_order ? kHostOrder : kBigEndianOrder;
  std::copy(file.name.begin(), file.name.end(), head.name);
  head.data_length = size;
  head.check_b =
      static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(file.data.data()), file.data.size()));
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

std::string ComposePackage(const PackageContents& contents, std::string& package) {
  if (std::string reason = ReasonAgainst(contents); !reason.empty()) return reason;
  PackageMainHead head{};
  package.assign(kMainHeadSize, '\0');
  for (const PackageFile& file : contents.files) {
    PackageFileHead file_head = FileHead(file, contents.host_order);
    head.files[head.file_count++] = EntryOf(file_head, file.id, package.size());
    if (!contents.host_order) ConvertFileHead(file_head);
    package.append(BytesOf(file_head)).append(file.data);
  }
  head.product_tag = contents.product_tag;
  head.minimum_payload = static_cast<std::uint32_t>(package.size() - kMainHeadSize);
  head.signature_format = contents.signature_format;
  head.byte_order = contents.host_order ? kHostOrder : kBigEndianOrder;
  head.attributes = contents.attribute;
  head.package_type = contents.type;
  if (!contents.host_order) ConvertMainHead(head, head.file_count);
  package.replace(0, kMainHeadSize, BytesOf(head));
  RenewHeadCrc(package);
  return "";
}

}  // namespace mkpkg
