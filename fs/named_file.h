#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "fs/names/name_rules.h"

/// A file or directory that a command works on.
struct NamedFile {
  char full[kNameRoom];     ///< what the system is asked with
  char display[kNameRoom];  ///< what the user is shown
};

/// Whether there is something of this full name; a link that leads nowhere is nothing.
[[nodiscard]] bool Exists(const char* full);

/// Whether there is a directory, or a link to one, of this full name.
[[nodiscard]] bool IsDirectory(const char* full);

/// Whether an entry of this full name, there or not, is a medium's when the links of its directory are followed. A
/// medium may come from anywhere: a link on it must lead nobody's writing into the device's own files.
[[nodiscard]] bool LiesOnMedium(const char* full);

/// Waits until the medium of an entry has what was done to it, its removal too. @return as SyncMediumOf.
bool SyncMediumOfEntry(const char* full);

/// Has all media written, and waits for that of an entry, of which sync alone leaves FAT's in the disk's own cache.
void SyncMedia(const char* full);

/// Decides where "copy" and "move" write to: the typed destination, or in a directory the source's base name.
/// @param typed          the destination as typed.
/// @param sourceBaseName the typed source's last component.
/// @param output         the full name, room for kNameRoom bytes.
/// @return 0, or ESH_ERR_FAIL when there is no such place.
[[nodiscard]] std::uint32_t ESH_CopyGetDestFullName(const char* typed, const char* sourceBaseName, char* output);

/// Resolves both files of "copy" and "move" from what was typed.
/// @param status of the source.
/// @return false when either does not exist or is not of the right kind, or the destination lies on no medium.
[[nodiscard]] bool ResolveTransfer(const char* typed_source, const char* typed_destination, NamedFile& source,
                                   NamedFile& destination, struct stat& status);

/// Whether removing the destination would remove the source: both are one directory entry, also under different
/// names (another case on a medium where case does not count, a link as the source, a second mount of a directory).
/// Another hard link of the source, or a symbolic link as the destination, is an entry of its own.
[[nodiscard]] bool IsSameEntry(const char* source, const char* destination);
