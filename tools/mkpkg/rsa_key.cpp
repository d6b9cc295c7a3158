#include "tools/mkpkg/rsa_key.h"

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

namespace mkpkg {
namespace {

struct BioFreer {
  void operator()(BIO* bio) const { BIO_free(bio); }
};
using UniqueBio = std::unique_ptr<BIO, BioFreer>;

struct ContextFreer {
  void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
};
using UniqueContext = std::unique_ptr<EVP_PKEY_CTX, ContextFreer>;

const unsigned char* Bytes(const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); }
unsigned char* Bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

std::string TextOf(const UniqueBio& bio) {
  char* text = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &text);
  return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : "";
}

UniqueBio Reader(const std::string& text) {
  return UniqueBio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

std::string ReasonAgainst(const UniqueKey& key, const std::string& origin) {
  if (EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) return origin + " holds no RSA key";
  const int bits = EVP_PKEY_get_bits(key.get());
  if (bits != kKeyBits)
    return origin + " holds a key of " + std::to_string(bits) + " bits; a device reads " + std::to_string(kKeyBits);
  return "";
}

/// A context for one operation with PKCS #1 type 1 padding; none when it cannot be made.
UniqueContext PaddedContext(const UniqueKey& key, int (*begin)(EVP_PKEY_CTX*)) {
  UniqueContext context(EVP_PKEY_CTX_new(key.get(), nullptr));
  if (!context || begin(context.get()) <= 0 || EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) <= 0)
    return nullptr;
  return context;
}

}  // namespace

void KeyFreer::operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }

std::string GenerateKey(std::uint32_t exponent, UniqueKey& key) {
  if (exponent < kLeastExponent || exponent % 2 == 0) {
    return "the exponent must be an odd number from " + std::to_string(kLeastExponent) +
           " on: with a smaller one signatures can be forged";
  }
  const UniqueContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
  const UniqueBigNumber number(BN_new());
  EVP_PKEY* made = nullptr;
  if (!context || !number || BN_set_word(number.get(), exponent) != 1 || EVP_PKEY_keygen_init(context.get()) <= 0 ||
      EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), kKeyBits) <= 0 ||
      EVP_PKEY_CTX_set1_rsa_keygen_pubexp(context.get(), number.get()) <= 0 ||
      EVP_PKEY_generate(context.get(), &made) <= 0)
    return "cannot make a key: " + CryptographicReason();
  key.reset(made);
  return "";
}

std::string PrivatePem(const UniqueKey& key) {
  const UniqueBio bio(BIO_new(BIO_s_secmem()));
  if (!bio || PEM_write_bio_PKCS8PrivateKey(bio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1)
    return "";
  return TextOf(bio);
}

std::string PublicPem(const UniqueKey& key) {
  const UniqueBio bio(BIO_new(BIO_s_mem()));
  if (!bio || PEM_write_bio_PUBKEY(bio.get(), key.get()) != 1) return "";
  return TextOf(bio);
}

std::string ParseKey(const std::string& pem, const std::string& origin, KeyPart part,
                     const std::optional<std::string>& passphrase, UniqueKey& key) {
  const bool is_private = part == KeyPart::kPrivate || pem.find("PRIVATE KEY-----") != std::string::npos;
  const UniqueBio bio = Reader(pem);
  if (!bio) return "out of memory";
  void* phrase = passphrase ? const_cast<char*>(passphrase->c_str()) : nullptr;
  key.reset(is_private ? PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, phrase)
                       : PEM_read_bio_PUBKEY(bio.get(), nullptr, nullptr, nullptr));
  if (key) return ReasonAgainst(key, origin);
  const char* kind = is_private ? "private" : "public";
  return std::string("cannot read a ") + kind + " key in PEM form from " + origin + ": " + CryptographicReason();
}

bool HasSmallExponent(const UniqueKey& key) {
  BIGNUM* exponent = nullptr;
  const bool known = EVP_PKEY_get_bn_param(key.get(), OSSL_PKEY_PARAM_RSA_E, &exponent) == 1;
  const UniqueBigNumber owner(exponent);
  return !known || IsBelow(exponent, kLeastExponent);
}

std::string SignBlock(const UniqueKey& key, const std::string& block, std::string& signature) {
  const UniqueContext context = PaddedContext(key, EVP_PKEY_sign_init);
  std::size_t length = static_cast<std::size_t>(EVP_PKEY_get_size(key.get()));
  signature.assign(length, '\0');
  // No digest is set, so that the block goes in as it is.
  if (!context || EVP_PKEY_sign(context.get(), Bytes(signature), &length, Bytes(block), block.size()) <= 0)
    return "cannot sign: " + CryptographicReason();
  signature.resize(length);
  return "";
}

bool OpensTo(const UniqueKey& key, const std::string& signature, const std::string& block) {
  const UniqueContext context = PaddedContext(key, EVP_PKEY_verify_recover_init);
  std::size_t length = static_cast<std::size_t>(EVP_PKEY_get_size(key.get()));
  std::string opened(length, '\0');
  if (!context ||
      EVP_PKEY_verify_recover(context.get(), Bytes(opened), &length, Bytes(signature), signature.size()) <= 0) {
    ERR_clear_error();
    return false;
  }
  opened.resize(length);
  return opened == block;
}

std::string CryptographicReason() {
  const unsigned long code = ERR_get_error();
  ERR_clear_error();
  const char* reason = ERR_reason_error_string(code);
  return reason == nullptr ? "out of memory" : reason;
}

}  // namespace mkpkg
