#pragma once

#include <algorithm>
#include <string_view>

/// Characters and comparisons of the ASCII alphabet, whatever the locale.

constexpr bool IsDigit(char character) { return character >= '0' && character <= '9'; }

constexpr bool IsLetterOrDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

constexpr bool IsHexDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F');
}

constexpr bool IsPrintable(char character) { return character >= 0x20 && character <= 0x7E; }

constexpr char LowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr bool BeginsIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && std::equal(
                                             prefix.begin(), prefix.end(), text.begin(),
                                             [](char a, char b) { return a == b || LowerCase(a) == LowerCase(b); });
}

constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && BeginsIgnoringCase(a, b);
}
