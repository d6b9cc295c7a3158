#include "tools/mkpkg/device_key.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>

namespace mkpkg {
namespace {

/// Appends one number of a key, big-endian.
bool AppendNumber(const UniqueKey& key, const char* name, std::string& file) {
  BIGNUM* number = nullptr;
  if (EVP_PKEY_get_bn_param(key.get(), name, &number) != 1) return false;
  const UniqueBigNumber owner(number);
  unsigned char bytes[kKeyNumberSize];
  const bool fits = BN_bn2binpad(number, bytes, sizeof(bytes)) == static_cast<int>(sizeof(bytes));
  file.append(reinterpret_cast<const char*>(bytes), sizeof(bytes));
  return fits;
}

}  // namespace

std::string EncodeDeviceKey(const UniqueKey& key, std::size_t size, std::string& file) {
  if (HasSmallExponent(key))
    return "the public exponent is below " + std::to_string(kLeastExponent) +
           ", which a key of 516 bytes makes forgeable";
  // The number of bits, as wide as the header is.
  file.assign(size - 2 * kKeyNumberSize, '\0');
  file[file.size() - 2] = static_cast<char>(kKeyBits >> 8);
  file[file.size() - 1] = static_cast<char>(kKeyBits & 0xFF);
  if (AppendNumber(key, OSSL_PKEY_PARAM_RSA_N, file) && AppendNumber(key, OSSL_PKEY_PARAM_RSA_E, file)) return "";
  return "cannot write the key: " + CryptographicReason();
}

}  // namespace mkpkg
