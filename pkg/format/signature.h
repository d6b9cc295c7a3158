#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "pkg/format/package_reader.h"

inline constexpr char kSignKeyDirectory[] = "/etc/sign_pub_key";
/// The key of packages that are signed in their main head.
inline constexpr char kHeadFormKey[] = "digital_sign_old_public";

/// Checks the signature of an open package. The open file itself is judged, not what its path names by now, though the
/// path must still name it and be no symbolic link. When it is good, the reader is sealed (PKG_READER_S::seal).
/// @param key_directory where the public keys are.
[[nodiscard]] PackageVerdict JudgeSignature(PKG_READER_S* reader, const char* key_directory);

/// Checks the signature of a package file with this device's keys. Prints nothing.
/// @return 1 when it is genuine, otherwise 0.
[[nodiscard]] std::uint32_t PKG_IsOnePkgAuthOK(const char* path);

/// @return 1: signed with a trailer; 0: in the main head; 2: the main head cannot be read.
[[nodiscard]] std::uint32_t PKG_GetSignFormat(const char* path);

/// Tells what a file is. @return 0, kErrPackageMismatch for a symbolic link, ESH_ERR_FAIL when it cannot be opened.
[[nodiscard]] std::uint32_t PKG_Fstat(const char* path, struct stat* stat);

/// @return the size of a file in bytes, 0 for one that PKG_Fstat refuses.
[[nodiscard]] std::uint64_t PKG_GetFileSizeByUserPath(const char* path);
