#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <string>
#include <string_view>

#include "tools/mkpkg/pieces.h"

namespace mkpkg {

struct ArchiveWriteFreer {
  /// What was not closed is ended as if all were in it: its sink must still be there.
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

/// Has an archive write to a sink, which must outlive it. @return false when the archive could not be opened.
[[nodiscard]] bool OpenToSink(archive* output, const Sink& sink);

/// Adds data to the entry that was begun. @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string WriteToArchive(archive* output, std::string_view data);

/// @return what the archive says went wrong.
[[nodiscard]] std::string ArchiveReason(archive* handle);

}  // namespace mkpkg
