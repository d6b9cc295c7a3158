#include "device/board/file_bytes.h"

#include <fstream>
#include <sstream>
#include <utility>

namespace device {

std::optional<std::string> FileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  // To copy nothing counts as a failure.
  if (!file || (file.peek() != std::ifstream::traits_type::eof() && !(bytes << file.rdbuf())) || file.bad())
    return std::nullopt;
  return std::move(bytes).str();
}

std::string ContentsOf(const UniqueFd& file) {
  return FileBytes("/proc/self/fd/" + std::to_string(file.Get())).value_or("");
}

}  // namespace device
