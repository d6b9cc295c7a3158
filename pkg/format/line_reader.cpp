#include "pkg/format/line_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

READ_BUFF_S* ReadBuffCreateByMem(const void* data, std::size_t length) {
  void* block = data == nullptr ? nullptr : std::malloc(sizeof(READ_BUFF_S) + length + sizeof('\0'));
  if (block == nullptr) return nullptr;
  char* text = static_cast<char*>(block) + sizeof(READ_BUFF_S);
  std::memcpy(text, data, length);
  text[length] = '\0';
  return new (block) READ_BUFF_S{.text = text, .end = text + length, .cursor = text, .length = length};
}

char* ReadBuffGets(READ_BUFF_S* reader) {
  if (reader->cursor == reader->end) return nullptr;
  char* line = reader->cursor;
  char* line_end = std::find_if(line, reader->end, [](char c) { return c == '\n' || c == '\r'; });
  const bool cr_lf = line_end[0] == '\r' && line_end[1] == '\n';
  reader->cursor = std::min(line_end + (cr_lf ? 2 : 1), reader->end);
  *line_end = '\0';
  return line;
}

void ReadBuffDestroy(READ_BUFF_S* reader) { std::free(reader); }
