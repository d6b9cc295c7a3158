#include "tools/mkpkg/package_model.h"

#include <algorithm>
#include <iterator>

#include "pkg/format/contained_file.h"
#include "pkg/format/line_reader.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/package_seal.h"
#include "pkg/format/package_text.h"
#include "tools/mkpkg/compression.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/unique_handle.h"

namespace mkpkg {
namespace {

std::string_view NameIn(const PackageFileHead& head) {
  return {head.name, std::find(std::begin(head.name), std::end(head.name), '\0')};
}

/// Only packed data are unpacked here: the device does it with a library of its own.
std::string UnpackData(const PackageFileHead& head, std::string_view stored, std::string& data) {
  if (head.compression == kStoredAsIs) {
    data = stored;
    return "";
  }
  if (head.compression == kPacked7z) return Unpack7z(stored, head.unpacked_size, data);
  return "compression " + std::to_string(head.compression) + " is unknown to devices";
}

}  // namespace

ContainedFile ReadContained(PKG_READER_S* reader, const PackageFileEntry& entry) {
  ContainedFile file;
  file.id = entry.file_id;
  const UniqueFileHead head(FileHeadCreateByFileDesc(reader, &entry));
  if (!head) {
    file.problem = "its head lies outside the package, does not agree with the file table or is not signed";
    return file;
  }
  file.has_head = true;
  file.device_code = head->device_code;
  file.compression = head->compression;
  file.stored_size = head->stored_size;
  file.told_size = head->compression == kPacked7z ? head->unpacked_size : head->stored_size;
  file.name = NameIn(*head);
  const std::uint64_t offset = std::uint64_t{entry.head_offset} + kFileHeadSize;
  const UniqueText stored(static_cast<char*>(ReadBlockFromFile(&reader->source, offset, head->stored_size)));
  if (!stored) {
    file.problem = head->stored_size == 0 ? "it is empty" : "its data lie outside the package";
    return file;
  }
  if (reader->seal != nullptr && !reader->seal->Holds(offset, stored.get(), head->stored_size)) {
    file.problem = "its data are not covered by the signature";
    return file;
  }
  file.problem = UnpackData(*head, {stored.get(), head->stored_size}, file.data);
  return file;
}

const ContainedFile* PackageModel::Find(std::uint32_t id) const {
  const auto found = std::find_if(files.begin(), files.end(), [&](const ContainedFile& f) { return f.id == id; });
  return found == files.end() ? nullptr : &*found;
}

std::string ReadPackage(const std::string& path, PackageModel& package) {
  package = {};
  PKG_READER_S* opened = nullptr;
  const PackageVerdict verdict = OpenPackage(path.c_str(), opened);
  const UniquePackage reader(opened);
  if (verdict != PackageVerdict::kGood) return path + ": " + TextOf(verdict).reason;
  package.head = reader->head;
  for (std::uint32_t i = 0; i < reader->head.file_count; ++i)
    package.files.push_back(ReadContained(reader.get(), reader->head.files[i]));
  std::string bytes;
  if (std::string problem = ReadWholeFile(path, bytes); !problem.empty()) return problem;
  package.size = bytes.size();
  if (!package.IsSignedInHead()) package.trailer = bytes.substr(bytes.size() - TrailerSize(bytes));
  return "";
}

std::string TrailerField(const PackageModel& package, std::string_view field) {
  for (const std::string& line : LinesOf(package.trailer))
    if (line.starts_with(field)) return line.substr(field.size());
  return "";
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  const UniqueLines reader(text.empty() ? nullptr : ReadBuffCreateByMem(text.data(), text.size()));
  if (!reader) return lines;
  for (const char* line = nullptr; (line = ReadBuffGets(reader.get())) != nullptr;) lines.emplace_back(line);
  return lines;
}

std::string TrimmedLine(std::string line) { return TrimLine(line.data()); }

}  // namespace mkpkg
