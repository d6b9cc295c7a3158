#pragma once

#include <optional>
#include <string>

namespace device {

/// @return all bytes of a file, or nullopt when it cannot be read.
[[nodiscard]] std::optional<std::string> FileBytes(const std::string& path);

}  // namespace device
