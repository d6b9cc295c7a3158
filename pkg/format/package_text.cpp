#include "pkg/format/package_text.h"

#include <cstring>

#include "pkg/format/contained_file.h"
#include "util/unique_handle.h"

UniqueLines OpenPackageText(PKG_READER_S* package, std::uint32_t file_id) {
  std::uint32_t size = 0;
  const UniqueText text(static_cast<char*>(GetFileFromReaderHeadByFileID(file_id, package, &size)));
  return UniqueLines(ReadBuffCreateByMem(text.get(), size));  // none of no text
}

char* TrimLine(char* line) {
  constexpr char kWhiteSpace[] = " \t\r\n\v\f";
  line += std::strspn(line, kWhiteSpace);
  std::size_t length = std::strlen(line);
  while (length > 0 && std::strchr(kWhiteSpace, line[length - 1]) != nullptr) --length;
  line[length] = '\0';
  return line;
}
