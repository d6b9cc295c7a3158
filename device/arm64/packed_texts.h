#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace device {

/// Joins texts, each with a NUL behind it.
inline std::string PackTexts(const std::vector<std::string>& texts) {
  std::string packed;
  for (const std::string& text : texts) (packed += text) += '\0';
  return packed;
}

/// Parts what PackTexts joined.
inline std::vector<std::string> UnpackTexts(std::string_view packed) {
  std::vector<std::string> texts;
  for (std::size_t end = 0; (end = packed.find('\0')) != std::string_view::npos; packed.remove_prefix(end + 1))
    texts.emplace_back(packed.substr(0, end));
  return texts;
}

}  // namespace device
