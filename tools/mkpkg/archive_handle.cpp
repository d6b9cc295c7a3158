#include "tools/mkpkg/archive_handle.h"

#include <cerrno>

namespace mkpkg {
namespace {

la_ssize_t GiveToSink(archive* output, void* sink, const void* bytes, std::size_t length) {
  const std::string problem = (*static_cast<const Sink*>(sink))({static_cast<const char*>(bytes), length});
  if (problem.empty()) return static_cast<la_ssize_t>(length);
  archive_set_error(output, EIO, "%s", problem.c_str());
  return ARCHIVE_FATAL;
}

}  // namespace

bool OpenToSink(archive* output, const Sink& sink) {
  // Not filled up to a whole block at the end.
  return archive_write_set_bytes_in_last_block(output, 1) == ARCHIVE_OK &&
         archive_write_open(output, const_cast<Sink*>(&sink), nullptr, GiveToSink, nullptr) == ARCHIVE_OK;
}

std::string WriteToArchive(archive* output, std::string_view data) {
  while (!data.empty()) {
    const la_ssize_t written = archive_write_data(output, data.data(), data.size());
    if (written <= 0) return ArchiveReason(output);
    data.remove_prefix(static_cast<std::size_t>(written));
  }
  return "";
}

std::string ArchiveReason(archive* handle) {
  const char* reason = handle == nullptr ? nullptr : archive_error_string(handle);
  return reason == nullptr ? "out of memory" : reason;
}

}  // namespace mkpkg
