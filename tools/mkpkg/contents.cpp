#include "tools/mkpkg/contents.h"

#include <limits>

#include "tools/mkpkg/files.h"
#include "tools/mkpkg/image_archive.h"

namespace mkpkg {
namespace {

constexpr char kArchiveSuffix[] = ".cpio";

std::string Below(const std::string& base, const std::string& path) {
  return path.starts_with('/') || base.empty() ? path : base + "/" + path;
}

/// The name that a device sees, unless the description gives one: that of the source, with the suffixes of all that was
/// done to it.
std::string NameOf(const FileDescription& file) {
  if (!file.name.empty()) return file.name;
  std::string name = file.id == kCompatibilityFile ? "compatibility.txt" : "description.txt";
  if (!file.file.empty()) name = BaseName(file.file);
  if (!file.directory.empty()) name = BaseName(file.directory) + kArchiveSuffix;
  for (const Compression compression : file.compressions) name += SuffixOf(compression);
  return name;
}

Feed SourceOf(const FileDescription& file, const std::string& base, std::int64_t time) {
  if (!file.directory.empty()) {
    return [directory = Below(base, file.directory), time](const Sink& sink) {
      return ArchiveDirectory(directory, time, sink);
    };
  }
  if (!file.file.empty()) return [path = Below(base, file.file)](const Sink& sink) { return FeedFile(path, sink); };
  return [text = file.text](const Sink& sink) { return sink(text); };
}

/// Gives what a feed gives, and notes its length in the package's file.
std::string FeedCounted(const Feed& feed, PackageFile& file, const Sink& sink) {
  std::uint64_t size = 0;
  std::string problem = feed([&](std::string_view piece) -> std::string {
    size += piece.size();
    return size > std::numeric_limits<std::uint32_t>::max() ? file.name + " is larger than 4 GB" : sink(piece);
  });
  file.unpacked_size = static_cast<std::uint32_t>(size);
  return problem;
}

PackageFile CollectFile(const FileDescription& described, const std::string& base, std::int64_t time) {
  PackageFile file;
  file.id = described.id;
  file.device_code = described.device_tag;
  file.name = NameOf(described);
  Feed feed = SourceOf(described, base, time);
  for (const Compression compression : described.compressions)
    if (compression == Compression::k7z)
      file.packing = kPacked7z;
    else
      feed = [feed, compression](const Sink& sink) { return Compress(compression, feed, sink); };
  if (file.packing == kPacked7z) {
    file.feed = [feed](PackageFile& self, const Sink& sink) {
      return Compress(
          Compression::k7z, [&](const Sink& archive) { return FeedCounted(feed, self, archive); }, sink);
    };
  } else {
    file.feed = [feed](PackageFile& /*self*/, const Sink& sink) { return feed(sink); };
  }
  return file;
}

}  // namespace

std::string CollectContents(const PackageDescription& description, const std::string& base, PackageContents& contents) {
  std::int64_t time = 0;
  if (std::string problem = ReadTimeOfEntries(time); !problem.empty()) return problem;
  contents = {};
  contents.product_tag = description.product_tag;
  contents.type = description.type;
  contents.attribute = description.attribute;
  contents.host_order = description.host_order;
  for (const FileDescription& described : description.files)
    contents.files.push_back(CollectFile(described, base, time));
  return "";
}

}  // namespace mkpkg
