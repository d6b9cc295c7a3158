#include "pkg/format/line_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

READ_BUFF_S* ReadBuffCreateByMem(const void* data, std::size_t length) {
  if (data == nullptr) return nullptr;
  UniqueLines reader(static_cast<READ_BUFF_S*>(std::calloc(1, sizeof(READ_BUFF_S))));
  if (reader == nullptr) return nullptr;
  reader->text = static_cast<char*>(std::malloc(length + 1));
  if (reader->text == nullptr) return nullptr;
  std::memcpy(reader->text, data, length);
  reader->text[length] = '\0';
  reader->end = reader->text + length;
  reader->cursor = reader->text;
  reader->length = length;
  return reader.release();
}

char* ReadBuffGets(READ_BUFF_S* reader) {
  if (reader->cursor == reader->end) return nullptr;
  char* line = reader->cursor;
  char* line_end = std::find_if(line, reader->end, [](char c) { return c == '\n' || c == '\r'; });
  const bool cr_lf = line_end < reader->end && line_end[0] == '\r' && line_end[1] == '\n';
  reader->cursor = std::min(line_end + (cr_lf ? 2 : 1), reader->end);
  *line_end = '\0';
  return line;
}

void ReadBuffDestroy(READ_BUFF_S* reader) {
  if (reader != nullptr) {
    std::free(reader->text);
    std::free(reader);
  }
}
