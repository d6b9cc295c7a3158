#pragma once

#include <openssl/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "pkg/format/public_key.h"

namespace mkpkg {

constexpr int kKeyBits = 2048;  ///< a device reads no other size
/// Below it signatures can be made without the private key.
constexpr std::uint32_t kLeastExponent = kLeastPrefixedExponent;

struct KeyFreer {
  void operator()(EVP_PKEY* key) const;
};
/// Owns a key, public or private.
using UniqueKey = std::unique_ptr<EVP_PKEY, KeyFreer>;

/// Makes an RSA key pair of the size that devices read.
/// @param exponent  odd, at least kLeastExponent.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string GenerateKey(std::uint32_t exponent, UniqueKey& key);

/// The private key as PEM (PKCS #8, not encrypted).
/// @return an empty text when there is no memory.
[[nodiscard]] std::string PrivatePem(const UniqueKey& key);
/// The public key as PEM (SubjectPublicKeyInfo).
/// @return as above.
[[nodiscard]] std::string PublicPem(const UniqueKey& key);

enum class KeyPart { kPublic, kPrivate };

/// Reads a key. Where the public part is wanted, a private key's PEM will do too.
/// @param origin      what messages call the text.
/// @param passphrase  of an encrypted key; without one the terminal is asked.
/// @return an empty text, or one line that says why this key cannot be used: no RSA key, not 2048 bits.
[[nodiscard]] std::string ParseKey(const std::string& pem, const std::string& origin, KeyPart part,
                                   const std::optional<std::string>& passphrase, UniqueKey& key);

/// @return whether the public exponent is one that no signature should hang on.
[[nodiscard]] bool HasSmallExponent(const UniqueKey& key);

/// Signs a block with PKCS #1 type 1 padding and nothing added.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string SignBlock(const UniqueKey& key, const std::string& block, std::string& signature);

/// @return whether this key opens the signature to this block.
[[nodiscard]] bool OpensTo(const UniqueKey& key, const std::string& signature, const std::string& block);

/// What the last failure of the cryptographic library was, for messages.
[[nodiscard]] std::string CryptographicReason();

}  // namespace mkpkg
