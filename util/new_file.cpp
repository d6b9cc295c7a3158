#include "util/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

UniqueFd CreateAnew(const char* path, mode_t mode) {
  (void)unlink(path);  // an absent file is what is wanted; one that stays makes the next step fail
  return UniqueFd(open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
}

bool WriteAll(int fd, const void* bytes, std::size_t length) {
  const char* rest = static_cast<const char*>(bytes);
  while (length > 0) {
    const ssize_t written = TEMP_FAILURE_RETRY(write(fd, rest, length));
    if (written <= 0) return false;
    rest += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

bool SyncMediumOf(const char* path) {
  const UniqueFd file(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));  // what is no file must not be waited for either
  if (!file || syncfs(file.Get()) != 0) return false;
  return fsync(file.Get()) == 0 || errno == EINVAL;  // FAT's syncfs leaves it in the disk's own cache
}
