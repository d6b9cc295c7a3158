#pragma once

#include <cstddef>

#include "pkg/line_reader.h"

struct PKG_READER_S;

/// Room for a package's product version.
inline constexpr std::size_t kProductVersionRoom = 65;

/// The product version that a package's own description gives; when there are several, the last.
/// @param version room for kProductVersionRoom bytes; empty when there is none.
void ReadProductVersion(PKG_READER_S* package, char* version);

/// Whether a compatibility list allows a boot image: one of the lines from "[boot]" on is its version, or that less
/// the hyphen and the package's own product version. The line "[boot]" itself counts.
/// @param running version of the boot image; an unknown one, which is empty, is never allowed.
[[nodiscard]] bool IsCompliant(READ_BUFF_S* list, const char* product_version, const char* running);
