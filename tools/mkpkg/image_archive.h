#pragma once

#include <cstdint>
#include <string>

#include "tools/mkpkg/pieces.h"

namespace mkpkg {

/// Makes the archive that a device unpacks into its root file system: cpio in the "newc" format. Entries are sorted by
/// name, belong to root and have one time, so that the same files give the same bytes. Permissions are kept.
/// @param directory  what is below it goes into the archive: directories, files and links.
/// @param time       in seconds since 1970, of every entry.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string ArchiveDirectory(const std::string& directory, std::int64_t time, const Sink& sink);

/// Reads the time that SOURCE_DATE_EPOCH gives; 0 when it is not set.
/// @return an empty text, or one line that says why it is none.
[[nodiscard]] std::string ReadTimeOfEntries(std::int64_t& time);

}  // namespace mkpkg
