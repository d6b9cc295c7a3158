#include "fuzz/require.h"
#include "pkg/format/public_key.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  PublicKey key;
  if (ParsePublicKey({data, size}, key) != PackageVerdict::kGood) return 0;
  Require(size == kDigestKeySize || size == kPrefixedKeySize);
  // What needs no private key: numbers whose power is known whatever the key.
  constexpr std::uint8_t kDigest[kDigestSize] = {};
  std::uint8_t signature[kKeyNumberSize] = {};
  Require(!SignatureHolds(key, signature, kDigest));
  signature[kKeyNumberSize - 1] = 1;
  Require(!SignatureHolds(key, signature, kDigest));
  Require(!SignatureHolds(key, {}, kDigest));
  return 0;
}
