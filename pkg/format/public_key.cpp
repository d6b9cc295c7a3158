#include "pkg/format/public_key.h"

#include <algorithm>
#include <climits>

#include "util/fixed_text.h"
#include "util/regular_file.h"

namespace {

UniqueBigNumber ReadNumber(std::span<const std::uint8_t> bytes) {
  return UniqueBigNumber(FIPS_bn_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr));
}

/// A key's name comes from a package: it must not lead out of the directory of keys, nor to a hidden file there.
bool IsVisibleFileName(std::string_view name) {
  return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos;
}

}  // namespace

PackageVerdict ParsePublicKey(std::span<const std::uint8_t> file, PublicKey& key) {
  if (file.size() != kDigestKeySize && file.size() != kPrefixedKeySize) return PackageVerdict::kKeyFile;
  const auto numbers = file.last(2 * kKeyNumberSize);
  const UniqueBigNumber modulus = ReadNumber(numbers.first(kKeyNumberSize));
  const UniqueBigNumber exponent = ReadNumber(numbers.last(kKeyNumberSize));
  if (modulus == nullptr || exponent == nullptr) return PackageVerdict::kNoMemory;
  key.prefix_allowed = file.size() == kPrefixedKeySize;
  if (!IsOddAboveOne(modulus.get()) || !IsOddAboveOne(exponent.get()) ||
      (key.prefix_allowed && IsBelow(exponent.get(), kLeastPrefixedExponent)))
    return PackageVerdict::kKeyValue;
  key.rsa = MakeRsaPublicKey(modulus.get(), exponent.get());
  return key.rsa == nullptr ? PackageVerdict::kKeyValue : PackageVerdict::kGood;
}

PackageVerdict ReadPublicKey(const char* directory, std::string_view name, PublicKey& key) {
  FixedText<PATH_MAX> path;
  path.Append("%s/", directory);
  path.AppendText(name);
  path.AppendText(kKeySuffix);
  if (!IsVisibleFileName(name) || path.Truncated()) return PackageVerdict::kKeyName;
  const UniqueFile file = OpenRegularFile(path.Text(), Links::kRefuse, nullptr);
  if (file == nullptr) return PackageVerdict::kKeyFile;
  std::uint8_t bytes[kPrefixedKeySize + 1];
  const std::size_t size = std::fread(bytes, 1, sizeof(bytes), file.get());
  return ParsePublicKey(std::span(bytes).first(size), key);
}

bool SignatureHolds(const PublicKey& key, std::span<const std::uint8_t> signature,
                    std::span<const std::uint8_t, kDigestSize> digest) {
  std::uint8_t block[kMostSigned];
  const int decrypted = FIPS_rsa_public_decrypt(static_cast<int>(signature.size()), signature.data(), block,
                                                key.rsa.get(), kPkcs1Padding);
  if (decrypted < static_cast<int>(kDigestSize) || (decrypted > static_cast<int>(kDigestSize) && !key.prefix_allowed))
    return false;
  return std::ranges::equal(std::span(block).first(static_cast<std::size_t>(decrypted)).last(kDigestSize), digest);
}
