#include "device/board/file_bytes.h"

#include <fstream>
#include <sstream>
#include <utility>

namespace device {

std::optional<std::string> FileBytes(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

}  // namespace device
