#pragma once

#include <strings.h>

#include <string_view>

/// Characters and comparisons of the ASCII alphabet, whatever the locale.

constexpr bool IsDigit(char character) { return character >= '0' && character <= '9'; }

constexpr bool IsHexDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F');
}

constexpr bool IsPrintable(char character) { return character >= 0x20 && character <= 0x7E; }

inline bool BeginsIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

inline bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && BeginsIgnoringCase(a, b);
}
