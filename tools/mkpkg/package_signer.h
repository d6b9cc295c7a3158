#pragma once

#include <string>

#include "tools/mkpkg/rsa_key.h"

namespace mkpkg {

/// How a package is signed.
struct SignatureForm {
  bool in_head = false;         ///< in the main head, with the device's one old key; otherwise in a trailer
  std::string key_name;         ///< of a trailer: the device's key file without directory and ".key"
  bool vendor_markers = false;  ///< of a trailer: the vendor's marker lines instead of the generic ones
  bool digest_info = false;  ///< the digest is signed with its algorithm's name before it; a 516-byte key takes both,
                             // a 514-byte key takes the digest alone
};

/// @return an empty text, or one line that says why a trailer cannot name this key on a device.
[[nodiscard]] std::string ReasonAgainstKeyName(const std::string& name);

/// Brings a package into the state that its signature covers: an older signature goes, the head tells the form.
/// @param package  a package that starts with a whole main head.
/// @return an empty text, or one line that says why it cannot be signed so.
[[nodiscard]] std::string PrepareForSigning(const SignatureForm& form, std::string& package);

/// @return the SHA-256 digest, 32 bytes, of what the signature of a prepared package covers.
[[nodiscard]] std::string DigestToSign(const SignatureForm& form, const std::string& package);

/// @return the block for a digest that is padded and signed: the digest, or its DigestInfo.
[[nodiscard]] std::string BlockToSign(const SignatureForm& form, const std::string& digest);

/// The text of a trailer around a signature.
[[nodiscard]] std::string Trailer(const SignatureForm& form, const std::string& signature);

/// Adds the signature to a prepared package.
/// @return an empty text, or one line that says why it does not fit.
[[nodiscard]] std::string AttachSignature(const SignatureForm& form, const std::string& signature,
                                          std::string& package);

/// Prepares a package, signs it and attaches the signature; the three steps above in one.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string SignPackage(const SignatureForm& form, const UniqueKey& key, std::string& package);

/// @return how many bytes at the end of a package are a signature trailer; 0 when there is none.
[[nodiscard]] std::size_t TrailerSize(const std::string& package);

}  // namespace mkpkg
