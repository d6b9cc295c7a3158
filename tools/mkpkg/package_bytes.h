#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mkpkg {

/// Reads a word as its package keeps it: big-endian, or in this machine's order. The word lies inside `bytes`.
[[nodiscard]] std::uint32_t GetWord(std::string_view bytes, std::size_t offset, bool host_order = false);

/// Writes a word. The word lies inside `bytes`.
void PutWord(std::string& bytes, std::size_t offset, std::uint32_t value, bool host_order = false);

/// @return whether these bytes can be a package: there is a whole main head, and it is readable.
[[nodiscard]] bool HasMainHead(std::string_view bytes);

/// @return whether a package's main head keeps its words in this machine's order. `package` holds a whole main head.
[[nodiscard]] bool IsHostOrder(std::string_view package);

/// Makes the CRC of a package's main head fit again after the head was changed. `package` holds a whole main head.
void RenewHeadCrc(std::string& package);

}  // namespace mkpkg
