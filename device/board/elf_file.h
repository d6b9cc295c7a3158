#pragma once

#include <optional>
#include <string>
#include <vector>

namespace device {

/// What a 64-bit ELF program or library says it needs to run.
struct ElfNeeds {
  std::string loader;                  ///< path; "" for a library and for a static program
  std::vector<std::string> libraries;  ///< file names without a directory
};

/// Reads what a program or library needs, whatever processor it is for.
/// @return nullopt when the file is no 64-bit ELF file of this machine's byte order, or cannot be read.
std::optional<ElfNeeds> ReadElfNeeds(const std::string& path);

}  // namespace device
