#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string_view>

#include "pkg/format/verdict.h"

/// The fingerprint trailer is the text at the very end of a package that was signed as a whole: seven lines, each
/// ended by LF.
///     --=</Begin Signed File Fingerprint\>=--
///     Fingerprint Length: 000494
///     Key: NAME
///     Hash: sha256
///     Signature: BASE64
///     Fingerprint Length: 000494
///     --=</End Signed File Fingerprint\>=--
/// The length is that of the trailer itself. The vendor's own form has "Kelvane " before "Signed" in both markers. The
/// backslash is part of a marker.

inline constexpr std::string_view kLengthLabel = "Fingerprint Length: ";
inline constexpr std::string_view kKeyLabel = "Key: ";
inline constexpr std::string_view kHashLabel = "Hash: ";
inline constexpr std::string_view kSignatureLabel = "Signature: ";
inline constexpr std::size_t kTrailerLengthDigits = 6;
/// The second length line and the end marker lie within so many bytes before the end.
inline constexpr std::size_t kTrailerTail = 100;
inline constexpr std::size_t kMostSignatureText = 2048;
inline constexpr std::string_view kTrailerHash = "sha256";

struct TrailerMarkers {
  std::string_view begin;
  std::string_view end;
};
inline constexpr TrailerMarkers kVendorMarkers = {"--=</Begin Kelvane Signed File Fingerprint\\>=--\n",
                                                  "--=</End Kelvane Signed File Fingerprint\\>=--\n"};
inline constexpr TrailerMarkers kGenericMarkers = {"--=</Begin Signed File Fingerprint\\>=--\n",
                                                   "--=</End Signed File Fingerprint\\>=--\n"};

/// A package's trailer, while its signature is checked.
struct PKG_CSS_S {
  char* text;          ///< terminated, from malloc
  std::uint32_t size;  ///< its length and the NUL
};

struct CssFreer {
  void operator()(PKG_CSS_S* css) const;
};

/// What a trailer says; the texts are part of its own.
struct TrailerFields {
  std::uint32_t length;  ///< both lines agree on it; whether it is the trailer's is not looked at
  std::string_view key;
  std::string_view signature;
};

/// Takes a trailer apart. @return none unless it has exactly the form above.
[[nodiscard]] std::optional<TrailerFields> ParseTrailer(std::string_view text);

/// The length that the end of a package tells of its trailer.
/// @param package the package, or no less than its last kTrailerTail bytes.
/// @return none when nothing there tells one.
[[nodiscard]] std::optional<std::uint32_t> ToldTrailerLength(std::string_view package);

/// Finds and reads the trailer of an open package, whatever its form.
/// @param size            of the file.
/// @param minimum_payload as in the main head.
/// @param css             receives the trailer on kGood; its text is the caller's, for free().
[[nodiscard]] PackageVerdict ReadTrailer(std::FILE* stream, std::uint64_t size, std::uint32_t minimum_payload,
                                         PKG_CSS_S* css);

/// ReadTrailer of a package file.
/// @return 0, kErrPackageMismatch for a symbolic link, kErrPackageOpen, kErrPackageMemory or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PKG_CreateCSS(const char* path, PKG_CSS_S* css);

/// @return 1 when a trailer has the fixed form, otherwise 0.
[[nodiscard]] std::uint32_t PKG_CSSCheck_IsFixFormat(const char* text);

/// Decodes a signature, TrailerFields::signature.
/// @param out        room for kHeadSignatureRoom bytes.
/// @param out_length receives the signature's length.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t DecodeSignature(std::string_view text, std::uint8_t* out, std::uint32_t* out_length);

/// DecodeSignature of what stands between "Signature: " and the line of the next length, whatever is around it.
[[nodiscard]] std::uint32_t PKG_GetCSS_Signture(const char* text, std::uint8_t* out, std::uint32_t* out_length);

/// @return whether a text holds nothing but digits; true of an empty one.
[[nodiscard]] bool PKG_IsAllDigit(const char* text);

/// @return whether a NUL byte is among the bytes.
[[nodiscard]] bool PKG_IsHaveZero(const void* buffer, std::size_t length);
