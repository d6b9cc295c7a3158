#pragma once

#include <sys/stat.h>

#include <cstddef>

#include "util/unique_handle.h"

enum class Links { kFollow, kRefuse };

/// Opens a regular file for reading; unlike with open(2), a FIFO can neither be opened nor be waited for. Kept out of
/// child processes.
/// @param links kRefuse: a path whose last component is a symbolic link does not open, with errno ELOOP.
/// @param stat  receives what the file is; may be none.
/// @return the stream, or none with errno set.
[[nodiscard]] UniqueFile OpenRegularFile(const char* path, Links links, struct stat* stat);

/// Reads a whole regular file.
/// @param out_size receives its size in bytes.
/// @return its bytes with a NUL behind them, for free(), or none: missing, empty, not a regular file, no memory.
[[nodiscard]] char* FileReadWhole(const char* path, std::size_t* out_size);
