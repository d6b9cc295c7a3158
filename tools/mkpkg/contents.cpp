#include "tools/mkpkg/contents.h"

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

std::string FetchData(const FileDescription& file, const std::string& base, std::string& data) {
  if (!file.directory.empty()) return ArchiveDirectory(Below(base, file.directory), TimeOfEntries(), data);
  if (!file.file.empty()) return ReadWholeFile(Below(base, file.file), data);
  data = file.text;
  return "";
}

std::string CollectFile(const FileDescription& described, const std::string& base, PackageFile& file) {
  file.id = described.id;
  file.device_code = described.device_tag;
  file.name = NameOf(described);
  if (std::string problem = FetchData(described, base, file.data); !problem.empty()) return problem;
  for (const Compression compression : described.compressions) {
    if (compression == Compression::k7z) {
      if (file.data.size() > 0xFFFFFFFF) return file.name + " is larger than 4 GB";
      file.unpacked_size = static_cast<std::uint32_t>(file.data.size());
      file.packing = kPacked7z;
    }
    Progress progress("Compressing " + file.name, file.data.size());
    std::string compressed;
    if (std::string problem = Compress(compression, file.data, progress, compressed); !problem.empty()) return problem;
    file.data = std::move(compressed);
  }
  return "";
}

}  // namespace

std::string CollectContents(const PackageDescription& description, const std::string& base, PackageContents& contents) {
  contents = {};
  contents.product_tag = description.product_tag;
  contents.type = description.type;
  contents.attribute = description.attribute;
  contents.host_order = description.host_order;
  for (const FileDescription& described : description.files) {
    PackageFile file;
    if (std::string problem = CollectFile(described, base, file); !problem.empty()) return problem;
    contents.files.push_back(std::move(file));
  }
  return "";
}

}  // namespace mkpkg
