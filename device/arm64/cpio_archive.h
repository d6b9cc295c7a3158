#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace device {

/// Writes an archive that the kernel unpacks as its first root file system: cpio in the "newc" format. The same
/// entries give the same bytes: everything belongs to root and has the same time.
class CpioArchive {
 public:
  explicit CpioArchive(std::ostream& output) : output_(output) {}

  /// Adds all that is below a directory, sorted by name. Of a mode only what matters is kept: a file may be executable,
  /// a directory sticky.
  /// @return an empty text, or one line that says what went wrong.
  [[nodiscard]] std::string AddTree(const std::string& directory);

  /// Adds the node of a character device.
  void AddDevice(const std::string& path, std::uint32_t mode, std::uint32_t major, std::uint32_t minor);

  /// Ends the archive. @return false when it could not be written.
  [[nodiscard]] bool Finish();

 private:
  struct Entry {
    std::string path;  ///< without a leading '/'
    std::uint32_t mode = 0;
    std::uint32_t links = 1;
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
  };

  void Add(const Entry& entry, std::string_view bytes);
  void Pad();

  std::ostream& output_;
  std::uint64_t length_ = 0;
  std::uint32_t entries_ = 0;
};

}  // namespace device
