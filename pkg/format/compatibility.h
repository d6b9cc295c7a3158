#pragma once

#include <cstddef>
#include <cstdint>

#include "pkg/format/line_reader.h"

struct PKG_READER_S;

/// Room for a package's product version.
inline constexpr std::size_t kProductVersionRoom = 65;

/// Room for the version of a boot image.
inline constexpr std::size_t kRunningVersionRoom = 129;

/// Most bytes of a boot image's description, packed and unpacked. Nobody has verified its package: the description may
/// claim, or unpack to, more than the device's memory.
inline constexpr std::uint32_t kMostBootDescription = 1 << 20;

/// Whether a boot image's package has a description, and none that is over the limit.
[[nodiscard]] bool HasModestDescription(PKG_READER_S* boot_image);

/// The product version that a package's description gives; when there are several, the last.
/// @param description may be none.
/// @param version     room for kProductVersionRoom bytes; empty when there is none.
void ReadProductVersion(READ_BUFF_S* description, char* version);

/// The version of a boot image as its package's description gives it: platform version, a hyphen, product version.
/// @param description may be none.
/// @param version     room for kRunningVersionRoom bytes; empty when there is none.
void ReadBootVersion(READ_BUFF_S* description, char* version);

/// Takes the next of a compatibility list's lines that can name a boot image, those from "[boot]" on with that one.
/// @param in_section false before the first call, then the function's.
/// @return the line, trimmed, or none at the end.
[[nodiscard]] const char* NextBootLine(READ_BUFF_S* list, bool& in_section);

/// Whether a compatibility list allows a boot image: one of those lines is its version, or that less the hyphen and the
/// package's own product version.
/// @param running version of the boot image; an unknown one, which is empty, is never allowed.
[[nodiscard]] bool IsCompliant(READ_BUFF_S* list, const char* product_version, const char* running);
