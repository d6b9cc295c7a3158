#include "pkg/format/line_reader.h"

#include <cstdint>
#include <cstring>

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UniqueLines reader(ReadBuffCreateByMem(data, size));
  Require((reader != nullptr) == (data != nullptr));
  std::size_t lines = 0;
  while (reader != nullptr) {
    const char* line = ReadBuffGets(reader.get());
    if (line == nullptr) break;
    ++lines;
    Require(std::strpbrk(line, "\r\n") == nullptr && line + std::strlen(line) <= reader->end);
  }
  Require(lines <= size);
  return 0;
}
