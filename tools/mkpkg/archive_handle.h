#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <string>

namespace mkpkg {

struct ArchiveWriteFreer {
  void operator()(archive* output) const { archive_write_free(output); }
};
using UniqueArchiveWriter = std::unique_ptr<archive, ArchiveWriteFreer>;

struct ArchiveReadFreer {
  void operator()(archive* input) const { archive_read_free(input); }
};
using UniqueArchiveReader = std::unique_ptr<archive, ArchiveReadFreer>;

struct ArchiveEntryFreer {
  void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};
using UniqueArchiveEntry = std::unique_ptr<archive_entry, ArchiveEntryFreer>;

/// Has an archive write to the end of a text, which must outlive it.
/// @return false when the archive could not be opened.
[[nodiscard]] bool OpenToText(archive* output, std::string& text);

/// @return what the archive says went wrong.
[[nodiscard]] std::string ArchiveReason(archive* handle);

}  // namespace mkpkg
