#pragma once

#include <cstddef>
#include <cstdint>

/// Suffixes of packed cpio archives, and what unpacks each.
inline constexpr std::size_t kCpioSuffixes = 3;
extern const char* const g_apcCpioSuffixType[kCpioSuffixes];
extern const char* const g_apcDecompressType[kCpioSuffixes];

/// Unpacks a packed cpio archive into a directory, over what is there; the working directory stays.
/// @param archivePath its last suffix tells how it is packed.
/// @return 0 when it was unpacked, also when there is no such directory to unpack it into; otherwise ESH_ERR_FAIL.
std::uint32_t PKG_CpioUnpackerProc(const char* archivePath, const char* targetDir);
