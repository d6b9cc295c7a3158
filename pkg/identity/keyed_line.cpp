#include "pkg/identity/keyed_line.h"

#include <string_view>

#include "pkg/format/line_reader.h"
#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/regular_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

std::uint32_t ReadKeyedLine(const char* path, const char* key, std::size_t room, char* value) {
  value[0] = '\0';
  std::size_t size = 0;
  const UniqueText text(FileReadWhole(path, &size));
  const UniqueLines lines(ReadBuffCreateByMem(text.get(), size));  // none of no text
  if (lines == nullptr) return kErrFileUnreadable;
  const std::string_view wanted(key);
  for (const char* line = ReadBuffGets(lines.get()); line != nullptr; line = ReadBuffGets(lines.get())) {
    if (BeginsIgnoringCase(line, wanted)) {
      CopyBounded(value, room, line + wanted.size());
      return kSuccess;
    }
  }
  return ESH_ERR_FAIL;
}
