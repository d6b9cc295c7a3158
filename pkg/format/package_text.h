#pragma once

#include <cstdint>

#include "pkg/format/line_reader.h"

struct PKG_READER_S;

/// What lines of a package's description begin with, and those of the device's version file.
inline constexpr char kPlatformVersion[] = "Platform version: ";
inline constexpr char kProductVersion[] = "Product version: ";

/// Opens a text file of a package for reading line by line. @return none when the package has no such file.
[[nodiscard]] UniqueLines OpenPackageText(PKG_READER_S* package, std::uint32_t file_id);

/// Takes the blanks, tabs and the like off both ends of a line, in place. @return where it begins now.
[[nodiscard]] char* TrimLine(char* line);
