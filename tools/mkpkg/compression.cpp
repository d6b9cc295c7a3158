#include "tools/mkpkg/compression.h"

#include <algorithm>
#include <iterator>

#include "tools/mkpkg/archive_handle.h"

namespace mkpkg {
namespace {

constexpr std::size_t kWriteSize = 1 << 18;  // between two looks at the progress
constexpr char kEntryName[] = "data";        // of the only file in a 7z archive; nobody reads it

int SetUpGz(archive* output) {
  const int result = archive_write_add_filter_gzip(output);
  // The time would make each day's bytes different.
  return result == ARCHIVE_OK ? archive_write_set_filter_option(output, "gzip", "timestamp", nullptr) : result;
}

struct Method {
  Compression compression;
  const char* name;
  const char* suffix;
  int (*set_up)(archive*);
  int (*set_format)(archive*);
};
constexpr Method kMethods[] = {
    {Compression::kGz, "gz", ".gz", SetUpGz, archive_write_set_format_raw},
    {Compression::kLzma, "lzma", ".lzma", archive_write_add_filter_lzma, archive_write_set_format_raw},
    {Compression::kXz, "xz", ".xz", archive_write_add_filter_xz, archive_write_set_format_raw},
    {Compression::k7z, "7z", "", archive_write_add_filter_none, archive_write_set_format_7zip},
};

const Method& MethodOf(Compression compression) {
  return *std::find_if(
      std::begin(kMethods), std::end(kMethods),
      [&](const Method& method) { return method.compression == compression; });
}

bool WriteData(archive* output, std::string_view data, Progress& progress) {
  for (std::string_view rest = data; !rest.empty();) {
    const la_ssize_t written = archive_write_data(output, rest.data(), std::min(rest.size(), kWriteSize));
    if (written <= 0) return false;
    rest.remove_prefix(static_cast<std::size_t>(written));
    progress.Advance(static_cast<std::size_t>(written));
  }
  return true;
}

UniqueArchiveReader OpenText(std::string_view text, int (*support)(archive*), int (*filters)(archive*)) {
  UniqueArchiveReader input(archive_read_new());
  if (!input || support(input.get()) != ARCHIVE_OK || filters(input.get()) < ARCHIVE_WARN ||
      archive_read_open_memory(input.get(), text.data(), text.size()) != ARCHIVE_OK)
    return nullptr;
  return input;
}

}  // namespace

std::optional<Compression> CompressionNamed(std::string_view name) {
  for (const Method& method : kMethods)
    if (name == method.name) return method.compression;
  return std::nullopt;
}

const char* SuffixOf(Compression compression) { return MethodOf(compression).suffix; }

std::string Compress(Compression compression, std::string_view data, Progress& progress, std::string& compressed) {
  const Method& method = MethodOf(compression);
  compressed.clear();
  const UniqueArchiveWriter output(archive_write_new());
  const UniqueArchiveEntry entry(archive_entry_new());
  if (!output || !entry) return "out of memory";
  archive_entry_set_pathname(entry.get(), kEntryName);
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), 0644);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(data.size()));
  if (method.set_format(output.get()) != ARCHIVE_OK || method.set_up(output.get()) != ARCHIVE_OK ||
      !OpenToText(output.get(), compressed) || archive_write_header(output.get(), entry.get()) != ARCHIVE_OK ||
      !WriteData(output.get(), data, progress) || archive_write_close(output.get()) != ARCHIVE_OK)
    return std::string("cannot compress with ") + method.name + ": " + ArchiveReason(output.get());
  return "";
}

std::string Unpack7z(std::string_view packed, std::size_t size, std::string& data) {
  const UniqueArchiveReader input =
      OpenText(packed, archive_read_support_format_7zip, archive_read_support_filter_none);
  archive_entry* entry = nullptr;
  if (!input || archive_read_next_header(input.get(), &entry) != ARCHIVE_OK) return "the data are no 7z archive";
  const la_int64_t length = archive_entry_size(entry);
  if (length <= 0 || static_cast<std::size_t>(length) > size)
    return "the 7z data unpack to nothing, or to more than the size that the package tells";
  data.assign(static_cast<std::size_t>(length), '\0');
  if (archive_read_data(input.get(), data.data(), data.size()) != length) {
    data = {};
    return "the 7z data are damaged";
  }
  return "";
}

std::optional<ImageRoom> MeasureImage(std::string_view image) {
  const UniqueArchiveReader input = OpenText(image, archive_read_support_format_cpio, archive_read_support_filter_all);
  if (!input) return std::nullopt;
  ImageRoom room;
  archive_entry* entry = nullptr;
  int result = ARCHIVE_OK;
  while ((result = archive_read_next_header(input.get(), &entry)) == ARCHIVE_OK || result == ARCHIVE_WARN) {
    ++room.files;
    if (archive_entry_filetype(entry) == AE_IFREG) room.bytes += static_cast<std::uint64_t>(archive_entry_size(entry));
    if (archive_read_data_skip(input.get()) < ARCHIVE_WARN) return std::nullopt;
  }
  return result == ARCHIVE_EOF ? std::optional(room) : std::nullopt;
}

}  // namespace mkpkg
