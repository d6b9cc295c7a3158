#include "pkg/format/fips_crypto.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>

namespace {

/// Sets libcrypto up, with the first thing that a verification makes and not when the shell starts. Without any
/// configuration file: what decides over a package is built in, and no file of the device may put other algorithms in
/// its place.
bool IsSetUp() {
  static const bool is_set_up = OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr) == 1;
  return is_set_up;
}

struct ParamBuilderFreer {
  void operator()(OSSL_PARAM_BLD* builder) const { OSSL_PARAM_BLD_free(builder); }
};
struct ParamsFreer {
  void operator()(OSSL_PARAM* params) const { OSSL_PARAM_free(params); }
};
struct KeyContextFreer {
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
};
using UniqueParams = std::unique_ptr<OSSL_PARAM, ParamsFreer>;
using UniqueKeyContext = std::unique_ptr<EVP_PKEY_CTX, KeyContextFreer>;

UniqueParams KeyParams(const BIGNUM* modulus, const BIGNUM* exponent) {
  const std::unique_ptr<OSSL_PARAM_BLD, ParamBuilderFreer> builder(OSSL_PARAM_BLD_new());
  if (builder == nullptr || OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, modulus) != 1 ||
      OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, exponent) != 1)
    return nullptr;
  return UniqueParams(OSSL_PARAM_BLD_to_param(builder.get()));
}

}  // namespace

const EVP_MD* FIPS_evp_sha256() { return IsSetUp() ? EVP_sha256() : nullptr; }

void FIPS_md_ctx_init(FIPS_MD_CTX* ctx) { ctx->context = EVP_MD_CTX_new(); }

int FIPS_digestinit(FIPS_MD_CTX* ctx, const EVP_MD* method) {
  return ctx->context == nullptr ? 0 : EVP_DigestInit_ex(ctx->context, method, nullptr);
}

int FIPS_digestupdate(FIPS_MD_CTX* ctx, const void* data, std::size_t length) {
  return EVP_DigestUpdate(ctx->context, data, length);
}

int FIPS_digestfinal(FIPS_MD_CTX* ctx, unsigned char* digest, unsigned* length) {
  return EVP_DigestFinal_ex(ctx->context, digest, length);
}

int FIPS_md_ctx_copy(FIPS_MD_CTX* to, const FIPS_MD_CTX* from) {
  return to->context == nullptr ? 0 : EVP_MD_CTX_copy_ex(to->context, from->context);
}

void FIPS_md_ctx_cleanup(FIPS_MD_CTX* ctx) {
  EVP_MD_CTX_free(ctx->context);
  ctx->context = nullptr;
}

void BigNumberFreer::operator()(BIGNUM* number) const { BN_free(number); }

BIGNUM* FIPS_bn_bin2bn(const unsigned char* bytes, int length, BIGNUM* number) {
  return IsSetUp() ? BN_bin2bn(bytes, length, number) : nullptr;
}

bool IsOddAboveOne(const BIGNUM* number) { return BN_is_odd(number) == 1 && BN_is_one(number) == 0; }

// A number with more bits than a word has counts as the largest word.
bool IsBelow(const BIGNUM* number, std::uint32_t bound) { return BN_get_word(number) < bound; }

void RsaKeyFreer::operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }

UniqueRsaKey MakeRsaPublicKey(const BIGNUM* modulus, const BIGNUM* exponent) {
  const UniqueParams params = KeyParams(modulus, exponent);
  const UniqueKeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
  EVP_PKEY* key = nullptr;
  if (params == nullptr || context == nullptr || EVP_PKEY_fromdata_init(context.get()) != 1 ||
      EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, params.get()) != 1)
    return nullptr;
  return UniqueRsaKey(key);
}

int FIPS_rsa_public_decrypt(int length, const unsigned char* from, unsigned char* to, EVP_PKEY* key, int padding) {
  static_assert(kPkcs1Padding == RSA_PKCS1_PADDING);
  const UniqueKeyContext context(EVP_PKEY_CTX_new(key, nullptr));
  std::size_t signed_length = kMostSigned;
  // Without a digest's name set, what was signed comes out as it is, an algorithm prefix included.
  if (context == nullptr || EVP_PKEY_verify_recover_init(context.get()) != 1 ||
      EVP_PKEY_CTX_set_rsa_padding(context.get(), padding) != 1 ||
      EVP_PKEY_verify_recover(context.get(), to, &signed_length, from, static_cast<std::size_t>(length)) != 1)
    return -1;
  return static_cast<int>(signed_length);
}

int DecodeBase64Groups(unsigned char* out, const unsigned char* text, int length) {
  return EVP_DecodeBlock(out, text, length);
}
