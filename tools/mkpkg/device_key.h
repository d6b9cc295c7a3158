#pragma once

#include <string>

#include "pkg/format/public_key.h"
#include "tools/mkpkg/rsa_key.h"

namespace mkpkg {

/// The two sizes of a device's key file. Both hold a header that nothing reads, the modulus and the public exponent.
constexpr std::size_t kShortKeyFile = kDigestKeySize;   ///< opens signatures of the digest alone
constexpr std::size_t kLongKeyFile = kPrefixedKeySize;  ///< opens them with or without DigestInfo

/// Makes the bytes of a device's key file from a public key.
/// @param size  kShortKeyFile or kLongKeyFile.
/// @return an empty text, or one line that says what went wrong. A key with a small exponent is refused.
[[nodiscard]] std::string EncodeDeviceKey(const UniqueKey& key, std::size_t size, std::string& file);

}  // namespace mkpkg
