#pragma once

#include <cstddef>

/// Reads a whole file.
/// @param out_size receives its size in bytes.
/// @return its bytes with a NUL behind them, for free(), or none: missing, empty, not a regular file, no memory.
[[nodiscard]] char* FileReadWhole(const char* path, std::size_t* out_size);
