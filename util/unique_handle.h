#pragma once

#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

/// Owns a file descriptor; -1 owns nothing.
class UniqueFd {
 public:
  UniqueFd() = default;
  /// Takes a descriptor over.
  explicit UniqueFd(int fd) : fd_(fd) {}
  /// Takes over what the other owns.
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    Reset(other.Release());
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  /// Closes silently: whoever wrote and must know whether it arrived releases and closes.
  ~UniqueFd() { Reset(); }

  /// The descriptor, still owned; -1 for none.
  [[nodiscard]] int Get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  /// Gives the descriptor to the caller, who closes it.
  [[nodiscard]] int Release() { return std::exchange(fd_, -1); }
  /// Closes what is owned and takes `fd` over.
  void Reset(int fd = -1) {
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
/// Owns a stream that is read: closing it cannot lose anything.
using UniqueFile = std::unique_ptr<std::FILE, FileCloser>;

struct DirCloser {
  void operator()(DIR* dir) const { closedir(dir); }
};
/// Owns an open directory.
using UniqueDir = std::unique_ptr<DIR, DirCloser>;

struct MemoryFreer {
  void operator()(void* memory) const { std::free(memory); }
};
/// Owns text from malloc.
using UniqueText = std::unique_ptr<char, MemoryFreer>;
