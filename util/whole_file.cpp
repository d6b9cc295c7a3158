#include "util/whole_file.h"

#include <cstdio>
#include <cstdlib>

#include "util/regular_file.h"

char* FileReadWhole(const char* path, std::size_t* out_size) {
  *out_size = 0;
  struct stat stat;
  const UniqueFile file = OpenRegularFile(path, Links::kFollow, &stat);
  if (file == nullptr || stat.st_size == 0) return nullptr;
  const auto size = static_cast<std::size_t>(stat.st_size);
  UniqueText text(static_cast<char*>(std::malloc(size + 1)));
  if (text == nullptr || std::fread(text.get(), 1, size, file.get()) != size) return nullptr;
  text.get()[size] = '\0';
  *out_size = size;
  return text.release();
}
