#include "tools/mkpkg/compression.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "tools/mkpkg/archive_handle.h"
#include "tools/mkpkg/files.h"
#include "util/unique_handle.h"

namespace mkpkg {
namespace {

constexpr std::size_t kReadSize = 1 << 16;
constexpr char kEntryName[] = "data";  // of the only file in a 7z archive; nobody reads it

/// Dictionaries of 4 MB: the level above takes twice the memory, here and on the device, for a hundredth of the size.
struct Method {
  Compression compression;
  const char* name;
  const char* suffix;
  int (*set_up)(archive*);
  int (*set_format)(archive*);
  const char* options;
};
constexpr Method kMethods[] = {
    // The time would make each day's bytes different.
    {Compression::kGz, "gz", ".gz", archive_write_add_filter_gzip, archive_write_set_format_raw, "gzip:!timestamp"},
    {Compression::kLzma, "lzma", ".lzma", archive_write_add_filter_lzma, archive_write_set_format_raw,
     "lzma:compression-level=4"},
    {Compression::kXz, "xz", ".xz", archive_write_add_filter_xz, archive_write_set_format_raw,
     "xz:compression-level=4"},
    {Compression::k7z, "7z", "", archive_write_add_filter_none, archive_write_set_format_7zip,
     "7zip:compression-level=4"},
};

const Method& MethodOf(Compression compression) {
  return *std::ranges::find(kMethods, compression, &Method::compression);
}

std::string CannotCompress(archive* output, const Method& method) {
  return std::string("cannot compress with ") + method.name + ": " + ArchiveReason(output);
}

/// Makes an archive of one file. @param size of its data; only a 7z archive tells it.
std::string WriteArchive(const Method& method, std::uint64_t size, const Feed& feed, const Sink& sink) {
  const UniqueArchiveWriter output(archive_write_new());
  const UniqueArchiveEntry entry(archive_entry_new());
  if (!output || !entry) return "out of memory";
  archive_entry_set_pathname(entry.get(), kEntryName);
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), 0644);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(size));
  if (method.set_format(output.get()) != ARCHIVE_OK || method.set_up(output.get()) != ARCHIVE_OK ||
      archive_write_set_options(output.get(), method.options) != ARCHIVE_OK || !OpenToSink(output.get(), sink) ||
      archive_write_header(output.get(), entry.get()) != ARCHIVE_OK)
    return CannotCompress(output.get(), method);
  std::string problem = feed([&](std::string_view piece) { return WriteToArchive(output.get(), piece); });
  if (problem.empty() && archive_write_close(output.get()) != ARCHIVE_OK)
    problem = CannotCompress(output.get(), method);
  return problem;
}

/// The head of a 7z archive tells the length of what is in it, so that is kept in a file until its length is known.
std::string Keep(const Feed& feed, const UniqueFd& kept, std::uint64_t& size) {
  const Sink into_file = IntoFile(kept.Get(), "a temporary file");
  return feed([&](std::string_view piece) {
    size += piece.size();
    return into_file(piece);
  });
}

la_ssize_t ReadPiece(archive* /*input*/, void* pieces, const void** bytes) {
  const std::string_view piece = static_cast<Pieces*>(pieces)->Next();
  *bytes = piece.data();
  return static_cast<Pieces*>(pieces)->Problem().empty() ? static_cast<la_ssize_t>(piece.size()) : ARCHIVE_FATAL;
}

la_int64_t SeekPiece(archive* /*input*/, void* pieces, la_int64_t offset, int whence) {
  auto* file = static_cast<FilePieces*>(pieces);
  if (whence == SEEK_CUR) offset += static_cast<la_int64_t>(file->Place());
  if (whence == SEEK_END) offset += static_cast<la_int64_t>(file->Length());
  file->SetPlace(static_cast<std::uint64_t>(offset));
  return offset;
}

/// What comes out of a 7z archive.
class SevenZipPieces final : public Pieces {
 public:
  SevenZipPieces(std::unique_ptr<FilePieces> packed, std::uint64_t size)
      : packed_(std::move(packed)), input_(archive_read_new()), buffer_(kReadSize) {
    archive_entry* entry = nullptr;
    if (!input_ || archive_read_support_format_7zip(input_.get()) != ARCHIVE_OK ||
        archive_read_set_seek_callback(input_.get(), SeekPiece) != ARCHIVE_OK ||
        archive_read_open(input_.get(), packed_.get(), nullptr, ReadPiece, nullptr) != ARCHIVE_OK ||
        archive_read_next_header(input_.get(), &entry) != ARCHIVE_OK) {
      problem_ = "the data are no 7z archive";
      return;
    }
    left_ = archive_entry_size(entry);
    if (left_ <= 0 || static_cast<std::uint64_t>(left_) > size)
      problem_ = "the 7z data unpack to nothing, or to more than the size that the package tells";
  }

  [[nodiscard]] std::string_view Next() override {
    if (!problem_.empty() || left_ == 0) return {};
    const la_ssize_t count = archive_read_data(input_.get(), buffer_.data(), buffer_.size());
    if (count <= 0) {
      problem_ = "the 7z data are damaged";
      return {};
    }
    left_ -= count;
    return {buffer_.data(), static_cast<std::size_t>(count)};
  }

 private:
  std::unique_ptr<FilePieces> packed_;
  UniqueArchiveReader input_;
  std::vector<char> buffer_;
  la_int64_t left_ = 0;
};

}  // namespace

std::optional<Compression> CompressionNamed(std::string_view name) {
  for (const Method& method : kMethods)
    if (name == method.name) return method.compression;
  return std::nullopt;
}

const char* SuffixOf(Compression compression) { return MethodOf(compression).suffix; }

std::string Compress(Compression compression, const Feed& feed, const Sink& sink) {
  const Method& method = MethodOf(compression);
  if (compression != Compression::k7z) return WriteArchive(method, 0, feed, sink);
  const UniqueFd kept = OpenScratch();
  if (!kept) return "cannot make a temporary file";
  std::uint64_t size = 0;
  if (std::string problem = Keep(feed, kept, size); !problem.empty()) return problem;
  FilePieces pieces(kept.Get(), 0, size);
  return WriteArchive(
      method, size, [&](const Sink& archive) { return FeedPieces(pieces, archive); }, sink);
}

UniquePieces Unpack7z(std::unique_ptr<FilePieces> packed, std::uint64_t size) {
  return std::make_unique<SevenZipPieces>(std::move(packed), size);
}

std::optional<ImageRoom> MeasureImage(Pieces& image) {
  const UniqueArchiveReader input(archive_read_new());
  if (!input || archive_read_support_format_cpio(input.get()) != ARCHIVE_OK ||
      archive_read_support_filter_all(input.get()) < ARCHIVE_WARN ||
      archive_read_open(input.get(), &image, nullptr, ReadPiece, nullptr) != ARCHIVE_OK)
    return std::nullopt;
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
