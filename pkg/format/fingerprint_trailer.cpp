#include "pkg/format/fingerprint_trailer.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>

#include "pkg/format/base64.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_reader.h"
#include "util/ascii.h"
#include "util/decimal.h"
#include "util/regular_file.h"
#include "util/result.h"

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

/// Reads six digits. @return none when there are fewer, or something else among them.
std::optional<std::uint32_t> ReadLength(std::string_view text) {
  char digits[kTrailerLengthDigits + 1] = {};
  text.copy(digits, kTrailerLengthDigits);
  std::uint64_t length = 0;
  if (text.size() < kTrailerLengthDigits || !ReadDecimal(digits, length)) return std::nullopt;
  return static_cast<std::uint32_t>(length);
}

/// Takes the line of a label off the text. @return its value, which holds no blank; none when it is another line.
std::optional<std::string_view> TakeLine(std::string_view& text, std::string_view label) {
  const std::size_t line_end = text.find('\n');
  if (!text.starts_with(label) || line_end == std::string_view::npos) return std::nullopt;
  const std::string_view value = text.substr(label.size(), line_end - label.size());
  text.remove_prefix(line_end + 1);
  if (value.empty() || value.find_first_of(kBlanks) != std::string_view::npos) return std::nullopt;
  return value;
}

/// @param size no less than a main head's.
std::optional<std::uint32_t> FindTrailerLength(std::FILE* stream, std::uint64_t size) {
  char tail[kTrailerTail];
  if (fseeko(stream, static_cast<off_t>(size - sizeof(tail)), SEEK_SET) != 0 ||
      std::fread(tail, 1, sizeof(tail), stream) != sizeof(tail))
    return std::nullopt;
  return ToldTrailerLength({tail, sizeof(tail)});
}

std::uint32_t ResultOfTrailer(PackageVerdict verdict) {
  return verdict == PackageVerdict::kNoMemory ? kErrPackageMemory : ResultOf(verdict);
}

}  // namespace

void CssFreer::operator()(PKG_CSS_S* css) const {
  std::free(css->text);
  css->text = nullptr;
}

std::optional<TrailerFields> ParseTrailer(std::string_view text) {
  const TrailerMarkers& markers = text.ends_with(kVendorMarkers.end) ? kVendorMarkers : kGenericMarkers;
  if (!text.ends_with(markers.end) || !text.starts_with(markers.begin)) return std::nullopt;
  text.remove_prefix(markers.begin.size());
  const auto length = TakeLine(text, kLengthLabel);
  const auto key = TakeLine(text, kKeyLabel);
  const auto hash = TakeLine(text, kHashLabel);
  const auto signature = TakeLine(text, kSignatureLabel);
  const auto length_again = TakeLine(text, kLengthLabel);
  // Nothing but the end marker is left, so no marker can occur twice.
  if (!length || !key || !hash || !signature || !length_again || text != markers.end) return std::nullopt;
  const auto told = ReadLength(*length);
  const bool holds =
      told && length->size() == kTrailerLengthDigits && *length == *length_again && *hash == kTrailerHash;
  return holds ? std::optional(TrailerFields{*told, *key, *signature}) : std::nullopt;
}

std::optional<std::uint32_t> ToldTrailerLength(std::string_view package) {
  if (package.size() < kTrailerTail) return std::nullopt;
  const std::string_view tail = package.substr(package.size() - kTrailerTail);
  const std::size_t label = tail.find(kLengthLabel);
  return label == std::string_view::npos ? std::nullopt : ReadLength(tail.substr(label + kLengthLabel.size()));
}

PackageVerdict ReadTrailer(std::FILE* stream, std::uint64_t size, std::uint32_t minimum_payload, PKG_CSS_S* css) {
  if (size < kMainHeadSize + std::uint64_t{minimum_payload}) return PackageVerdict::kShorterThanPayload;
  const auto length = FindTrailerLength(stream, size);
  if (!length) return PackageVerdict::kNoTrailer;
  // What is signed has at least a main head: otherwise the head would be part of a text that nobody signed.
  if (*length == 0 || *length > size - kMainHeadSize) return PackageVerdict::kTrailerLength;
  UniqueText text(static_cast<char*>(std::malloc(*length + std::size_t{1})));
  if (text == nullptr) return PackageVerdict::kNoMemory;
  if (fseeko(stream, static_cast<off_t>(size - *length), SEEK_SET) != 0 ||
      std::fread(text.get(), 1, *length, stream) != *length)
    return PackageVerdict::kUnreadable;
  if (PKG_IsHaveZero(text.get(), *length)) return PackageVerdict::kTrailerHoldsNul;
  text.get()[*length] = '\0';
  *css = {.text = text.release(), .size = *length + 1};
  return PackageVerdict::kGood;
}

std::uint32_t PKG_CreateCSS(const char* path, PKG_CSS_S* css) {
  struct stat stat;
  const UniqueFile stream = OpenRegularFile(path, Links::kRefuse, &stat);
  if (stream == nullptr) return errno == ELOOP ? kErrPackageMismatch : kErrPackageOpen;
  PackageMainHead head;
  if (PKG_GetMainHeadByHandle(stream.get(), &head) != kSuccess) return ESH_ERR_FAIL;
  return ResultOfTrailer(
      ReadTrailer(stream.get(), static_cast<std::uint64_t>(stat.st_size), head.minimum_payload, css));
}

std::uint32_t PKG_CSSCheck_IsFixFormat(const char* text) { return ParseTrailer(text) ? 1 : 0; }

std::uint32_t DecodeSignature(std::string_view text, std::uint8_t* out, std::uint32_t* out_length) {
  if (text.size() > kMostSignatureText) return ESH_ERR_FAIL;
  const auto length = DecodeBase64(text, std::span(out, kHeadSignatureRoom));
  if (!length) return ESH_ERR_FAIL;
  *out_length = static_cast<std::uint32_t>(*length);
  return kSuccess;
}

std::uint32_t PKG_GetCSS_Signture(const char* text, std::uint8_t* out, std::uint32_t* out_length) {
  const char* label = std::strstr(text, kSignatureLabel.data());
  const char* begin = label == nullptr ? nullptr : label + kSignatureLabel.size();
  const char* next = begin == nullptr ? nullptr : std::strstr(begin, kLengthLabel.data());
  if (next == nullptr || next[-1] != '\n') return ESH_ERR_FAIL;
  return DecodeSignature({begin, next - 1}, out, out_length);
}

bool PKG_IsAllDigit(const char* text) { return std::all_of(text, text + std::strlen(text), IsDigit); }

bool PKG_IsHaveZero(const void* buffer, std::size_t length) { return std::memchr(buffer, '\0', length) != nullptr; }
