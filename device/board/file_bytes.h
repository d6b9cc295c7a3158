#pragma once

#include <optional>
#include <string>

#include "util/unique_handle.h"

namespace device {

/// @return all bytes of a file, or nullopt when it cannot be read.
[[nodiscard]] std::optional<std::string> FileBytes(const std::string& path);

/// @return all that was written to an open file, whoever wrote it.
[[nodiscard]] std::string ContentsOf(const UniqueFd& file);

}  // namespace device
