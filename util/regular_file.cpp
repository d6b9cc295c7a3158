#include "util/regular_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

UniqueFile OpenRegularFile(const char* path, Links links, struct stat* stat) {
  const int refuse = links == Links::kRefuse ? O_NOFOLLOW : 0;
  // Non-blocking matters only for what is no regular file: opening a FIFO would wait for a writer.
  UniqueFd fd(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | refuse));
  struct stat found;
  if (!fd || fstat(fd.Get(), &found) != 0) return nullptr;
  if (!S_ISREG(found.st_mode)) {
    errno = EINVAL;
    return nullptr;
  }
  UniqueFile file(fdopen(fd.Get(), "r"));
  if (file != nullptr) {
    (void)fd.Release();  // the stream's from now on
    if (stat != nullptr) *stat = found;
  }
  return file;
}

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
