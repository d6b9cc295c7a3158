#pragma once

#include <cstdint>
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

/// A package in the state that its signature covers.
struct PreparedPackage {
  std::string head;       ///< its main head
  std::uint64_t end = 0;  ///< of what is signed; an older trailer stands there
};

/// Tells what a signature is to cover: an older signature is left out, the head tells the form. Nothing is changed yet.
/// @param fd  of the package.
/// @return an empty text, or one line that says why it cannot be signed so.
[[nodiscard]] std::string PrepareForSigning(const SignatureForm& form, int fd, PreparedPackage& package);

/// Computes the SHA-256 digest, 32 bytes, of what the signature of a prepared package covers.
[[nodiscard]] std::string DigestToSign(const SignatureForm& form, int fd, const PreparedPackage& package,
                                       std::string& digest);

/// @return the block for a digest that is padded and signed: the digest, or its DigestInfo.
[[nodiscard]] std::string BlockToSign(const SignatureForm& form, const std::string& digest);

/// The text of a trailer around a signature.
[[nodiscard]] std::string Trailer(const SignatureForm& form, const std::string& signature);

/// @return an empty text, or one line that says why a package cannot carry this signature.
[[nodiscard]] std::string ReasonAgainstSignature(const SignatureForm& form, const std::string& signature);

/// Writes the signature into the file of a prepared package, in place: only the main head and what stands behind the
/// signed part change.
/// @return false, with errno, when that fails; what was changed is then put back.
[[nodiscard]] bool AttachSignature(const SignatureForm& form, const std::string& signature, int fd,
                                   PreparedPackage package);

/// All of these steps for a package in memory.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string SignPackage(const SignatureForm& form, const UniqueKey& key, std::string& package);

/// @return the text of the signature trailer that a package ends in; "" when there is none.
/// @param fd    of the package.
/// @param size  of the package, which holds a whole main head.
[[nodiscard]] std::string FindTrailer(int fd, std::uint64_t size);

}  // namespace mkpkg
