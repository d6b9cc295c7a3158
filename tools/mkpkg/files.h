#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace mkpkg {

/// Reads a file to its end.
/// @return an empty text, or one line that says why it cannot be read.
[[nodiscard]] std::string ReadWholeFile(const std::string& path, std::string& bytes);

/// Writes a file that appears whole or not at all: a temporary file beside it takes its place when everything is on
/// the disk. What is no regular file, such as a pipe, is written as it stands.
/// @param mode     permissions of the file, less the umask.
/// @param replace  false: a file that exists already is a failure.
/// @return an empty text, or one line that says what went wrong; the file is then as it was before.
[[nodiscard]] std::string WriteWholeFile(const std::string& path, std::string_view bytes, mode_t mode = 0666,
                                         bool replace = true);

/// @return the last part of a path.
[[nodiscard]] std::string BaseName(const std::string& path);

}  // namespace mkpkg
