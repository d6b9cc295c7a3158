#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pkg/format/package_format.h"
#include "tools/mkpkg/compression.h"

struct PKG_READER_S;

namespace mkpkg {

/// A contained file as a device finds it.
struct ContainedFile {
  std::uint32_t id = 0;
  bool has_head = false;  ///< the fields below are known
  std::uint32_t device_code = 0;
  std::uint32_t compression = kStoredAsIs;
  std::uint64_t stored_size = 0;
  std::uint64_t size = 0;  ///< of the data that a device gets
  std::string name;
  std::string begin;         ///< of the data; of a text all of it
  bool is_measured = false;  ///< `room` was asked for
  std::optional<ImageRoom> room;
  std::string problem;  ///< why a device gets no data; "": it does

  /// Whether devices read it line by line.
  [[nodiscard]] bool IsText() const { return id == kCompatibilityFile || id == kDescriptionFile; }
};

/// A package as a device finds it, before anybody asks whether it is genuine.
struct PackageModel {
  std::uint64_t size = 0;
  PackageMainHead head{};  ///< in host order
  std::string trailer;     ///< text of the signature trailer; "" when there is none
  std::vector<ContainedFile> files;

  /// Whether the signature stands in the main head and not in a trailer.
  [[nodiscard]] bool IsSignedInHead() const { return head.signature_format != kTrailerSigned; }
  /// @return the first file of an ID, which is the one that a device takes; none when there is none.
  [[nodiscard]] const ContainedFile* Find(std::uint32_t id) const;
};

/// Reads a package with the reader that the device has.
/// @param measures_images  whether all of an image is read, to tell the room that it needs.
/// @return an empty text, or one line that says why a device could not open it.
[[nodiscard]] std::string ReadPackage(const std::string& path, bool measures_images, PackageModel& package);

/// Reads the file of a row of the table; of a verified package only what its signature covers.
[[nodiscard]] ContainedFile ReadContained(PKG_READER_S* reader, const PackageFileEntry& entry, bool measures_images);

/// Opens its data, unpacked, without reading them.
/// @param file  receives what its head tells.
/// @return none when there are none; `file` tells why.
[[nodiscard]] UniquePieces OpenContained(PKG_READER_S* reader, const PackageFileEntry& entry, ContainedFile& file);

/// @return the rest of a trailer's line that starts with `field`, such as kKeyLabel; "" when there is no such line.
[[nodiscard]] std::string TrailerField(const std::string& trailer, std::string_view field);

/// @return a word as the reports show tags and IDs.
[[nodiscard]] std::string HexWord(std::uint32_t value);

/// Lines of a text file in a package, as a device reads them.
[[nodiscard]] std::vector<std::string> LinesOf(const std::string& text);

/// @return a line without blanks, tabs and the like around it, as a device trims one.
[[nodiscard]] std::string TrimmedLine(std::string line);

}  // namespace mkpkg
