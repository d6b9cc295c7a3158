#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What may be the name of a package file, and of an image in it.

inline constexpr char kPackageSuffix[] = ".bin";
inline constexpr std::size_t kMaxPackageName = 127;
inline constexpr std::size_t kMaxTypedPackage = 63;  ///< most characters that the package commands take

/// Bytes of the record of what was loaded, a package's path below /mnt/. A longer path is cut.
inline constexpr std::size_t kLoadRecordSize = 64;

/// Whether a name has a suffix, in any case, and something before it.
/// @param maxLength most characters of the name.
/// @return 1 or 0.
[[nodiscard]] std::uint16_t ESH_FilterFile(const char* name, const char* suffix, std::size_t maxLength);

/// Whether a name holds "~", with which FAT marks the short form of a long name: a package has one name only.
[[nodiscard]] bool HoldsAliasMark(const char* name);

/// Whether a package may have this name: it ends in ".bin" in any case, has no more than kMaxPackageName characters and
/// no alias mark.
[[nodiscard]] bool IsPackageName(const char* name);

/// Room for the name of an image, which is cut there.
inline constexpr std::size_t kImageNameRoom = 129;

/// Whether an image's name holds nothing but letters, digits, ".", "_", "-" and "+": it becomes part of a command line
/// of /bin/sh. An empty one is none, nor is "." or "..".
[[nodiscard]] bool IsPlainImageName(std::string_view name);
