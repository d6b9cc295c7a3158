#pragma once

#include <cstddef>
#include <cstdint>

/// What may be the name of a package file.

inline constexpr char kPackageSuffix[] = ".bin";

/// Whether a name has a suffix, in any case, and something before it.
/// @param maxLength most characters of the name.
/// @return 1 or 0.
[[nodiscard]] std::uint16_t ESH_FilterFile(const char* name, const char* suffix, std::size_t maxLength);

/// Whether a name holds "~", with which FAT marks the short form of a long name: a package has one name only.
[[nodiscard]] bool HoldsAliasMark(const char* name);

/// Resolves the name of an existing package on a medium, and prints why it is refused.
/// @param name     as typed.
/// @param fullPath room for kNameRoom bytes.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PackageNameProcess(const char* name, char* fullPath);
