#pragma once

#include <cstddef>
#include <cstdint>

/// Text files of lines that begin with a key, such as "Product version: 7.1".

/// The file cannot be read.
inline constexpr std::uint32_t kErrFileUnreadable = 0x4001000B;

/// Finds the first line that begins with a key, in any case, and copies what follows it.
/// @param key  with its colon and blank.
/// @param room of `value` in bytes; a longer rest is cut. Empty on a failure.
/// @return 0, kErrFileUnreadable, or ESH_ERR_FAIL when no line has the key.
std::uint32_t ReadKeyedLine(const char* path, const char* key, std::size_t room, char* value);
