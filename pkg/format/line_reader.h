#pragma once

#include <cstddef>
#include <memory>

/// A text that is read line by line.
struct READ_BUFF_S {
  char* text;    ///< its own copy, with a NUL behind it, in the block of this record
  char* end;     ///< of the text
  char* cursor;  ///< start of the next line
  std::size_t length;
};

/// Makes a reader of a copy of the text. @return for ReadBuffDestroy, or none: no text, or no memory.
[[nodiscard]] READ_BUFF_S* ReadBuffCreateByMem(const void* data, std::size_t length);

/// Takes the next line, which ends at LF, CR or CR LF, or at the end of the text unless nothing stands before it. It is
/// not trimmed. @return the terminated line, valid as long as the reader, or none at the end.
[[nodiscard]] char* ReadBuffGets(READ_BUFF_S* reader);

/// Frees a reader; accepts none.
void ReadBuffDestroy(READ_BUFF_S* reader);

struct LinesFreer {
  void operator()(READ_BUFF_S* reader) const { ReadBuffDestroy(reader); }
};
using UniqueLines = std::unique_ptr<READ_BUFF_S, LinesFreer>;
