#include "tools/mkpkg/package_writer.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "tools/mkpkg/package_bytes.h"

namespace mkpkg {
namespace {

constexpr std::uint64_t kMaxPackage = std::numeric_limits<std::uint32_t>::max();  // offsets are 32-bit words

std::string ReasonAgainst(const PackageContents& contents) {
  if (contents.files.size() > kMaxFiles) {
    return "a package holds at most " + std::to_string(kMaxFiles) + " files, not " +
           std::to_string(contents.files.size());
  }
  std::uint64_t size = kMainHeadSize;
  for (const PackageFile& file : contents.files) {
    size += kFileHeadSize + file.data.size();
    if (file.name.size() >= kFileNameRoom) {
      return "the name " + file.name + " is longer than " + std::to_string(kFileNameRoom - 1) + " bytes";
    }
    if (file.name.find('\0') != std::string::npos) return "a name holds a NUL byte";
  }
  return size > kMaxPackage ? "the package would be larger than 4 GB" : "";
}

std::uint32_t ChecksumOf(const std::string& data) {
  return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(data.data()), data.size()));
}

std::string FileHead(const PackageFile& file, bool host_order) {
  std::string head(kFileHeadSize, '\0');
  const auto put = [&](std::size_t at, std::uint64_t value) {
    PutWord(head, at, static_cast<std::uint32_t>(value), host_order);
  };
  put(kCheckAAt, file.id);
  put(kDeviceCodeAt, file.device_code);
  put(kStoredSizeAt, file.data.size());
  put(kUnpackedSizeAt, file.packing == kStored ? file.data.size() : file.unpacked_size);
  put(kFileByteOrderAt, host_order ? kHostOrder : 0);
  put(kDataSizeAt, file.data.size());
  put(kCheckBAt, ChecksumOf(file.data));
  put(kPackingAt, file.packing);
  std::copy(file.name.begin(), file.name.end(), head.begin() + kFileNameAt);
  return head;
}

}  // namespace

std::string ComposePackage(const PackageContents& contents, std::string& package) {
  if (std::string reason = ReasonAgainst(contents); !reason.empty()) return reason;
  const auto put = [&](std::size_t at, std::uint64_t value) {
    PutWord(package, at, static_cast<std::uint32_t>(value), contents.host_order);
  };
  package.assign(kMainHeadSize, '\0');
  std::size_t entry = kFileTableAt;
  for (const PackageFile& file : contents.files) {
    put(entry + kEntryIdAt, file.id);
    put(entry + kEntryOffsetAt, package.size());
    put(entry + kEntryTotalAt, file.data.size() + kFileHeadSize);
    put(entry + kEntryCheckBAt, ChecksumOf(file.data));
    put(entry + kEntryCheckAAt, file.id);
    entry += kTableEntrySize;
    package += FileHead(file, contents.host_order);
    package += file.data;
  }
  put(kFileCountAt, contents.files.size());
  put(kProductTagAt, contents.product_tag);
  put(kPayloadSizeAt, package.size() - kMainHeadSize);
  put(kSignatureFormatAt, contents.signature_format);
  put(kByteOrderAt, contents.host_order ? kHostOrder : 0);
  put(kAttributeAt, contents.attribute);
  put(kPackageTypeAt, contents.type);
  RenewHeadCrc(package);
  return "";
}

}  // namespace mkpkg
