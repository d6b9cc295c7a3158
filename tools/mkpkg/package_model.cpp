#include "tools/mkpkg/package_model.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "pkg/format/contained_file.h"
#include "pkg/format/line_reader.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/package_seal.h"
#include "pkg/format/package_text.h"
#include "tools/mkpkg/compression.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/unique_handle.h"

namespace mkpkg {
namespace {

constexpr std::size_t kMostText = 4 << 20;  // no maker writes longer ones
constexpr std::size_t kMostMagic = 8;

std::string_view NameIn(const PackageFileHead& head) {
  return {head.name, std::find(std::begin(head.name), std::end(head.name), '\0')};
}

/// Passes data on and keeps what a maker is told of them.
class ObservedPieces final : public Pieces {
 public:
  ObservedPieces(Pieces& data, ContainedFile& file) : data_(data), file_(file) {}

  [[nodiscard]] std::string_view Next() override {
    const std::string_view piece = data_.Next();
    file_.size += piece.size();
    const std::size_t wanted = file_.IsText() ? kMostText + 1 : kMostMagic;
    file_.begin.append(piece.substr(0, wanted - std::min(wanted, file_.begin.size())));
    problem_ = data_.Problem();
    return piece;
  }

 private:
  Pieces& data_;
  ContainedFile& file_;
};

}  // namespace

UniquePieces OpenContained(PKG_READER_S* reader, const PackageFileEntry& entry, ContainedFile& file) {
  file = {};
  file.id = entry.file_id;
  const UniqueFileHead head(FileHeadCreateByFileDesc(reader, &entry));
  if (!head) {
    file.problem = "its head lies outside the package, does not agree with the file table or is not signed";
    return nullptr;
  }
  file.has_head = true;
  file.device_code = head->device_code;
  file.compression = head->compression;
  file.stored_size = head->stored_size;
  file.name = NameIn(*head);
  const std::uint64_t offset = std::uint64_t{entry.head_offset} + kFileHeadSize;
  if (head->stored_size == 0)
    file.problem = "it is empty";
  else if (offset + head->stored_size > SizeOfSource(reader->source))
    file.problem = "its data lie outside the package";
  else if (reader->seal != nullptr && !reader->seal->Covers(offset, head->stored_size))
    file.problem = "its data are not covered by the signature";
  else if (head->compression != kStoredAsIs && head->compression != kPacked7z)
    file.problem = "compression " + std::to_string(head->compression) + " is unknown to devices";
  if (!file.problem.empty()) return nullptr;
  auto stored = std::make_unique<FilePieces>(fileno(reader->source.stream), offset, head->stored_size);
  if (head->compression == kStoredAsIs) return stored;
  // The device does it with a library of its own.
  return Unpack7z(std::move(stored), head->unpacked_size);
}

ContainedFile ReadContained(PKG_READER_S* reader, const PackageFileEntry& entry, bool measures_images) {
  ContainedFile file;
  const UniquePieces data = OpenContained(reader, entry, file);
  if (!data) return file;
  ObservedPieces observed(*data, file);
  file.is_measured = measures_images && file.id == kSystemImageFile;
  if (file.is_measured) file.room = MeasureImage(observed);
  // Packed data are good only when all of them came; of others the beginning will do.
  const bool reads_all = file.IsText() || file.compression == kPacked7z;
  while ((reads_all || file.size == 0) && !observed.Next().empty()) {
  }
  if (file.compression == kStoredAsIs) file.size = file.stored_size;
  file.problem = data->Problem();
  if (file.problem.empty() && file.begin.size() > kMostText)
    file.problem = "a text of more than " + std::to_string(kMostText) + " bytes is not read here";
  if (!file.problem.empty()) file.begin.clear();
  return file;
}

const ContainedFile* PackageModel::Find(std::uint32_t id) const {
  const auto found = std::ranges::find(files, id, &ContainedFile::id);
  return found == files.end() ? nullptr : &*found;
}

std::string ReadPackage(const std::string& path, bool measures_images, PackageModel& package) {
  package = {};
  PKG_READER_S* opened = nullptr;
  const PackageVerdict verdict = OpenPackage(path.c_str(), opened);
  const UniquePackage reader(opened);
  if (verdict != PackageVerdict::kGood) return path + ": " + VerdictTextOf(verdict).reason;
  package.head = reader->head;
  package.size = SizeOfSource(reader->source);
  if (!package.IsSignedInHead()) package.trailer = FindTrailer(fileno(reader->source.stream), package.size);
  for (std::uint32_t i = 0; i < reader->head.file_count; ++i)
    package.files.push_back(ReadContained(reader.get(), reader->head.files[i], measures_images));
  return "";
}

std::string TrailerField(const std::string& trailer, std::string_view field) {
  for (const std::string& line : LinesOf(trailer))
    if (line.starts_with(field)) return line.substr(field.size());
  return "";
}

std::string HexWord(std::uint32_t value) {
  char text[sizeof("0x00000000")];
  (void)std::snprintf(text, sizeof(text), "0x%08X", value);
  return text;
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  const UniqueLines reader(ReadBuffCreateByMem(text.data(), text.size()));
  if (!reader) return lines;
  for (const char* line = nullptr; (line = ReadBuffGets(reader.get())) != nullptr;) lines.emplace_back(line);
  return lines;
}

std::string TrimmedLine(std::string line) { return TrimLine(line.data()); }

}  // namespace mkpkg
