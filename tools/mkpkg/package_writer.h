#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pkg/format/package_format.h"
#include "tools/mkpkg/pieces.h"

namespace mkpkg {

/// A file in a package.
struct PackageFile {
  std::uint32_t id = kSystemImageFile;
  std::string name;
  std::string data;               ///< as they are stored
  std::uint32_t device_code = 0;  ///< of an image: the device tag that it is built for
  std::uint32_t packing =
      kStoredAsIs;  ///< any other value than kStoredAsIs and kPacked7z makes a file that no device reads
  std::uint32_t unpacked_size = 0;  ///< of packed data
  /// Gives the data instead; of packed ones it sets the unpacked size of its file.
  std::function<std::string(PackageFile& file, const Sink& sink)> feed = nullptr;
};

/// What a package is made from.
struct PackageContents {
  std::uint32_t product_tag = 0;
  std::uint32_t type = kSystemPackage;
  std::uint32_t attribute = 0;
  std::uint32_t signature_format = kTrailerSigned;
  bool host_order = false;  ///< words in this machine's byte order instead of big-endian
  std::vector<PackageFile> files;
};

/// What WritePackage says when the file takes no more, and not the contents are to blame.
inline constexpr char kCannotWriteData[] = "cannot write the package";

/// Writes a package that is not signed yet into an empty file. The same contents give the same bytes.
/// @return an empty text, or one line that says why there can be no such package: too many files, a name that does not
///         fit, more than 4 GB.
[[nodiscard]] std::string WritePackage(const PackageContents& contents, int fd);

/// WritePackage into a text.
[[nodiscard]] std::string ComposePackage(const PackageContents& contents, std::string& package);

}  // namespace mkpkg
