#pragma once

#include <algorithm>
#include <string_view>

/// Characters and comparisons of the ASCII alphabet, whatever the locale.

/// Decimal digits.
constexpr bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// Letters and digits; no accented ones.
constexpr bool IsLetterOrDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

/// Hexadecimal digits in either case.
constexpr bool IsHexDigit(char character) {
  return IsDigit(character) || (character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F');
}

/// Blank to tilde: what takes one column on every terminal.
constexpr bool IsPrintable(char character) { return character >= 0x20 && character <= 0x7E; }

/// Any other character stays as it is.
constexpr char LowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// An empty prefix begins every text.
constexpr bool BeginsIgnoringCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && std::equal(
                                             prefix.begin(), prefix.end(), text.begin(),
                                             [](char a, char b) { return a == b || LowerCase(a) == LowerCase(b); });
}

/// Same length, and the same letters in any case.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && BeginsIgnoringCase(a, b);
}
