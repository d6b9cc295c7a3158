#pragma once

#include <sys/stat.h>

#include <cstdint>

/// Tells what a file is. @return 0, kErrPackageMismatch for a symbolic link, ESH_ERR_FAIL when it cannot be opened.
[[nodiscard]] std::uint32_t PKG_Fstat(const char* path, struct stat* stat);

/// @return the size of a file in bytes, 0 for one that PKG_Fstat refuses.
[[nodiscard]] std::uint64_t PKG_GetFileSizeByUserPath(const char* path);
