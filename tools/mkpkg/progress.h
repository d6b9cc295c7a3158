#pragma once

#include <cstdint>
#include <string>

namespace mkpkg {

/// Shows on standard error how far a long work is, when that is a terminal; otherwise it is silent. The line vanishes
/// with the object.
class Progress {
 public:
  /// @param work   what is done, such as "Compressing image.cpio.xz".
  /// @param total  the number of bytes to go through.
  Progress(std::string work, std::uint64_t total);
  /// Removes the line from the screen.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Counts bytes that are done; the line changes when the percentage does.
  void Advance(std::uint64_t bytes);

 private:
  std::string work_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  unsigned shown_ = 0;  ///< percent
  bool visible_;
};

}  // namespace mkpkg
