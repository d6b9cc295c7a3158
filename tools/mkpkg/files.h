#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

#include "tools/mkpkg/pieces.h"
#include "util/unique_handle.h"

namespace mkpkg {

/// Gives a file to a sink, from its start to its end.
[[nodiscard]] std::string FeedFile(const std::string& path, const Sink& sink);

/// @return a sink that writes to a descriptor. @param path  what messages call the file.
[[nodiscard]] Sink IntoFile(int fd, const std::string& path);

/// Reads a file to its end.
/// @return an empty text, or one line that says why it cannot be read.
[[nodiscard]] std::string ReadWholeFile(const std::string& path, std::string& bytes);

/// Writes into an open, empty file, anywhere in it. @return an empty text, or one line that says what went wrong.
using FillFile = std::function<std::string(int fd)>;

/// Writes a file that appears whole or not at all: a temporary file beside it takes its place when everything is on
/// the disk. What is no regular file, such as a pipe, gets the bytes then.
/// @param mode     permissions of the file, less the umask.
/// @param replace  false: a file that exists already is a failure.
/// @return an empty text, or one line that says what went wrong; the file is then as it was before.
[[nodiscard]] std::string WriteFile(const std::string& path, const FillFile& fill, mode_t mode = 0666,
                                    bool replace = true);

/// WriteFile with these bytes.
[[nodiscard]] std::string WriteWholeFile(const std::string& path, std::string_view bytes, mode_t mode = 0666,
                                         bool replace = true);

/// Writes all bytes into an open file from an offset on, and leaves the file's own offset behind them. @return false
/// when it takes fewer.
[[nodiscard]] bool WriteAt(int fd, std::uint64_t offset, std::string_view bytes);

/// Opens a file that is nobody's and gone when it is closed, in the directory for temporary files.
/// @return an owner of nothing when that is not possible.
[[nodiscard]] UniqueFd OpenScratch();

/// Has a function work on a file in memory that holds these bytes, and takes what it leaves there.
[[nodiscard]] std::string InMemory(std::string& bytes, const FillFile& work);

/// @return the last part of a path.
[[nodiscard]] std::string BaseName(const std::string& path);

}  // namespace mkpkg
