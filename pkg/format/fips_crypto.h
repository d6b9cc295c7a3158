#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct bignum_st;
struct evp_md_ctx_st;
struct evp_md_st;
struct evp_pkey_st;

/// The cryptography of packages: the FIPS entry points on top of libcrypto. Functions that return int return 1 when
/// all went well.

/// A running digest.
struct FIPS_MD_CTX {
  evp_md_ctx_st* context;
};

/// SHA-256; NULL when libcrypto cannot be set up.
[[nodiscard]] const evp_md_st* FIPS_evp_sha256();

/// Prepares a context, for FIPS_md_ctx_cleanup on every path.
void FIPS_md_ctx_init(FIPS_MD_CTX* ctx);
/// Starts a digest, also anew.
[[nodiscard]] int FIPS_digestinit(FIPS_MD_CTX* ctx, const evp_md_st* method);
/// Takes `length` bytes into a started digest.
[[nodiscard]] int FIPS_digestupdate(FIPS_MD_CTX* ctx, const void* data, std::size_t length);
/// Ends a started digest. @param length receives its length in bytes; may be none.
[[nodiscard]] int FIPS_digestfinal(FIPS_MD_CTX* ctx, unsigned char* digest, unsigned* length);
/// Makes `to`, a prepared context, go on from where `from` stands.
[[nodiscard]] int FIPS_md_ctx_copy(FIPS_MD_CTX* to, const FIPS_MD_CTX* from);
/// Frees what the context holds; a second call does nothing.
void FIPS_md_ctx_cleanup(FIPS_MD_CTX* ctx);

struct BigNumberFreer {
  void operator()(bignum_st* number) const;
};
using UniqueBigNumber = std::unique_ptr<bignum_st, BigNumberFreer>;

/// Reads a big-endian unsigned number into `number`, or into a new one when that is none.
/// @return the number; none when memory is short.
[[nodiscard]] bignum_st* FIPS_bn_bin2bn(const unsigned char* bytes, int length, bignum_st* number);

/// Whether a number is neither 0, 1 nor even.
[[nodiscard]] bool IsOddAboveOne(const bignum_st* number);
/// Whether a number is less than `bound`.
[[nodiscard]] bool IsBelow(const bignum_st* number, std::uint32_t bound);

struct RsaKeyFreer {
  void operator()(evp_pkey_st* key) const;
};
using UniqueRsaKey = std::unique_ptr<evp_pkey_st, RsaKeyFreer>;

/// Makes a public key. RSA_new and its kin, which would take the numbers one by one, are on their way out of libcrypto.
/// @return none when the numbers make no key.
[[nodiscard]] UniqueRsaKey MakeRsaPublicKey(const bignum_st* modulus, const bignum_st* exponent);

inline constexpr int kPkcs1Padding = 1;  ///< PKCS #1, block type 1

/// Takes a signature apart.
/// @param to   receives what was signed; room for kMostSigned bytes.
/// @return its length, or -1: not of this key, or padded otherwise.
[[nodiscard]] int FIPS_rsa_public_decrypt(int length, const unsigned char* from, unsigned char* to, evp_pkey_st* key,
                                          int padding);

/// Room for a block of the largest key in use.
inline constexpr std::size_t kMostSigned = 256;

/// Decodes whole groups of base64, with blanks around them and "=" anywhere: DecodeBase64 says what may be decoded.
/// @return three bytes for each group, or -1.
[[nodiscard]] int DecodeBase64Groups(unsigned char* out, const unsigned char* text, int length);
