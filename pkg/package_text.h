#pragma once

#include <cstdint>

#include "pkg/line_reader.h"

struct PKG_READER_S;

/// Opens a text file of a package for reading line by line. @return none when the package has no such file.
[[nodiscard]] UniqueLines OpenPackageText(PKG_READER_S* package, std::uint32_t file_id);

/// Takes the blanks, tabs and the like off both ends of a line, in place. @return where it begins now.
[[nodiscard]] char* TrimLine(char* line);
