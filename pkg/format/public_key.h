#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "pkg/format/fips_crypto.h"
#include "pkg/format/verdict.h"

/// A key file is a header, which says nothing, then the modulus and the public exponent, both big-endian. The size of
/// the header decides what a signature has to hold.
inline constexpr std::size_t kKeyNumberSize = 256;
inline constexpr std::size_t kDigestKeySize = 2 + 2 * kKeyNumberSize;    ///< the digest alone
inline constexpr std::size_t kPrefixedKeySize = 4 + 2 * kKeyNumberSize;  ///< whatever ends in the digest

inline constexpr std::size_t kDigestSize = 32;

/// Least public exponent of a key that takes prefixed digests.
inline constexpr std::uint32_t kLeastPrefixedExponent = 65537;

/// What the name of a key file ends in.
inline constexpr char kKeySuffix[] = ".key";

struct PublicKey {
  UniqueRsaKey rsa;
  bool prefix_allowed = false;
};

/// Makes a key of a key file's bytes.
/// @return kGood, kKeyFile for a wrong size, or kKeyValue: the numbers are no RSA key, or one with which anybody could
///         sign. The latter is an exponent of 1, and where a prefix is allowed any small one: of the block only the end
///         is compared, and a number whose power begins and ends as wanted is then easily found.
[[nodiscard]] PackageVerdict ParsePublicKey(std::span<const std::uint8_t> file, PublicKey& key);

/// Reads the key `name` from a directory. A name that is no plain, visible one of that directory is refused, for it
/// stands in the package: it could lead to a key that came with the package.
/// @return kGood, kKeyName, kKeyFile or kKeyValue.
[[nodiscard]] PackageVerdict ReadPublicKey(const char* directory, std::string_view name, PublicKey& key);

/// Whether a signature was made with this key for this digest.
[[nodiscard]] bool SignatureHolds(const PublicKey& key, std::span<const std::uint8_t> signature,
                                  std::span<const std::uint8_t, kDigestSize> digest);
