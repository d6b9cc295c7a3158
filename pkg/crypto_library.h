#pragma once

#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>

/// libcrypto, loaded when a package is verified and not when the shell starts: its relocation takes as long as half of
/// the shell's own start, and a device on which the library is damaged still gets its emergency shell.

/// What is used of it. A macro, because a declaration and a look-up must name the same functions.
#define ESH_CRYPTO_FUNCTIONS(FUNCTION)   \
  FUNCTION(BN_bin2bn)                    \
  FUNCTION(BN_free)                      \
  FUNCTION(BN_get_word)                  \
  FUNCTION(BN_is_odd)                    \
  FUNCTION(BN_is_one)                    \
  FUNCTION(BN_num_bits)                  \
  FUNCTION(EVP_DecodeBlock)              \
  FUNCTION(EVP_DigestFinal_ex)           \
  FUNCTION(EVP_DigestInit_ex)            \
  FUNCTION(EVP_DigestUpdate)             \
  FUNCTION(EVP_MD_CTX_copy_ex)           \
  FUNCTION(EVP_MD_CTX_free)              \
  FUNCTION(EVP_MD_CTX_new)               \
  FUNCTION(EVP_PKEY_CTX_free)            \
  FUNCTION(EVP_PKEY_CTX_new)             \
  FUNCTION(EVP_PKEY_CTX_new_from_name)   \
  FUNCTION(EVP_PKEY_CTX_set_rsa_padding) \
  FUNCTION(EVP_PKEY_free)                \
  FUNCTION(EVP_PKEY_fromdata)            \
  FUNCTION(EVP_PKEY_fromdata_init)       \
  FUNCTION(EVP_PKEY_verify_recover)      \
  FUNCTION(EVP_PKEY_verify_recover_init) \
  FUNCTION(EVP_sha256)                   \
  FUNCTION(OPENSSL_init_crypto)          \
  FUNCTION(OSSL_PARAM_BLD_free)          \
  FUNCTION(OSSL_PARAM_BLD_new)           \
  FUNCTION(OSSL_PARAM_BLD_push_BN)       \
  FUNCTION(OSSL_PARAM_BLD_to_param)      \
  FUNCTION(OSSL_PARAM_free)

struct CryptoLibrary {
#define ESH_CRYPTO_DECLARE(name) decltype(&::name) name;  // NOLINT(bugprone-macro-parentheses): a name
  ESH_CRYPTO_FUNCTIONS(ESH_CRYPTO_DECLARE)
#undef ESH_CRYPTO_DECLARE
};

/// @return the library, loaded at the first call and set up without any configuration file; none when it is missing.
[[nodiscard]] const CryptoLibrary* Crypto();
