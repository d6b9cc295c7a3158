#include "tools/mkpkg/archive_handle.h"

namespace mkpkg {
namespace {

la_ssize_t AppendToText(archive* /*output*/, void* text, const void* bytes, std::size_t length) {
  static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), length);
  return static_cast<la_ssize_t>(length);
}

}  // namespace

bool OpenToText(archive* output, std::string& text) {
  // Not filled up to a whole block at the end.
  return archive_write_set_bytes_in_last_block(output, 1) == ARCHIVE_OK &&
         archive_write_open(output, &text, nullptr, AppendToText, nullptr) == ARCHIVE_OK;
}

std::string ArchiveReason(archive* handle) {
  const char* reason = handle == nullptr ? nullptr : archive_error_string(handle);
  return reason == nullptr ? "out of memory" : reason;
}

}  // namespace mkpkg
