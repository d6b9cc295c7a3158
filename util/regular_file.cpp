#include "util/regular_file.h"

#include <fcntl.h>

#include <cerrno>

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
