#pragma once

#include <cstddef>
#include <cstdint>

/// The boot image's own version file, /etc/pkg/version/1_0_package. Results are those of ReadKeyedLine.

/// Room for one value of the file.
inline constexpr std::size_t kPkgInfoRoom = 65;

/// @param key   such as "Platform version: ".
/// @param value room for kPkgInfoRoom bytes.
std::uint32_t GetBootBinPkgInfo(const char* key, char* value);

/// Tells both versions in one text, which stays empty unless both are known.
/// @param size room of `text` in bytes.
void GetVersion(std::size_t size, char* text);

/// Room for a build year.
inline constexpr std::size_t kYearRoom = 5;

/// The year in which the boot image was built.
/// @param year room for kYearRoom bytes; empty when the file does not tell, which is no failure.
std::uint32_t ESH_GetCompileTimeFromBoot(char* year);
