#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/mkpkg/compression.h"

namespace mkpkg {

/// A file that a package is to hold, as its maker describes it.
struct FileDescription {
  std::uint32_t id = 0;
  std::uint32_t device_tag = 0;
  std::string name;
  std::string text;                       ///< the lines of "text:", each with its line end
  std::string file;                       ///< the data are those of this file; relative to where the description stands
  std::string directory;                  ///< the data are an archive of this directory; relative likewise
  std::vector<Compression> compressions;  ///< in this order
  int line = 0;                           ///< where it begins in the description
};

/// A package as its maker describes it. The format is explained in mkpkg-format(5).
struct PackageDescription {
  std::uint32_t product_tag = 0;
  std::uint32_t type = 0;
  std::uint32_t attribute = 0;
  bool host_order = false;
  std::vector<FileDescription> files;
};

/// Reads a description.
/// @param origin  what messages call the text.
/// @return an empty text, or one line "ORIGIN:LINE: what is wrong".
[[nodiscard]] std::string ParseDescription(std::string_view text, const std::string& origin,
                                           PackageDescription& description);

}  // namespace mkpkg
