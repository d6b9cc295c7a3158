#include "pkg/format/base64.h"

#include <algorithm>

#include "pkg/format/fips_crypto.h"
#include "util/ascii.h"

namespace {

constexpr std::size_t kGroup = 4;
constexpr std::size_t kGroupBytes = 3;
constexpr std::size_t kMostPadding = 2;

bool IsInAlphabet(char c) { return IsLetterOrDigit(c) || c == '+' || c == '/'; }

}  // namespace

std::optional<std::size_t> DecodeBase64(std::string_view text, std::span<std::uint8_t> out) {
  // The library forgives blanks, line ends and much else around the text; a signature has one form only.
  const std::size_t digits = std::min(text.find('='), text.size());
  const std::size_t padding = text.size() - digits;
  if (text.size() % kGroup != 0 || padding > kMostPadding || text.size() / kGroup * kGroupBytes > out.size() ||
      !std::ranges::all_of(text.substr(0, digits), IsInAlphabet) ||
      text.find_first_not_of('=', digits) != std::string_view::npos)
    return std::nullopt;
  const int decoded = DecodeBase64Groups(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                         static_cast<int>(text.size()));
  if (decoded < 0) return std::nullopt;
  return static_cast<std::size_t>(decoded) - padding;
}
