#include "tools/mkpkg/package_signer.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_format.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/ascii.h"

namespace mkpkg {
namespace {

constexpr std::size_t kMaxKeyName = 251;  // a file name with ".key"

/// DigestInfo of SHA-256 up to the digest (RFC 8017, section 9.2, note 1).
constexpr std::array<unsigned char, 19> kDigestInfo = {0x30, 0x31, 0x30, 0x0d, 0x06, 0x09, 0x60, 0x86, 0x48, 0x01,
                                                       0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00, 0x04, 0x20};

constexpr std::uint32_t kSignedInHead = 0;
constexpr std::size_t kFormatAt = offsetof(PackageMainHead, signature_format);
constexpr std::size_t kSignatureLengthAt = offsetof(PackageMainHead, signature_length);
constexpr std::size_t kSignatureAt = offsetof(PackageMainHead, signature);

const unsigned char* Bytes(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }

std::string Base64(const std::string& bytes) {
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  const int length =
      EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), Bytes(bytes), static_cast<int>(bytes.size()));
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string SixDigits(std::size_t number) {
  std::string digits = std::to_string(number);
  return digits.insert(0, kTrailerLengthDigits - std::min(kTrailerLengthDigits, digits.size()), '0');
}

std::string Line(std::string_view label, std::string_view value) {
  return std::string(label).append(value).append("\n");
}

bool IsTrailer(std::string_view text) {
  const auto stands_between = [&](const TrailerMarkers& markers) {
    return text.starts_with(markers.begin) && text.ends_with(markers.end);
  };
  return stands_between(kGenericMarkers) || stands_between(kVendorMarkers);
}

}  // namespace

std::string ReasonAgainstKeyName(const std::string& name) {
  if (name.empty()) return "a trailer must name its key";
  if (name.size() > kMaxKeyName) return "the key name is longer than " + std::to_string(kMaxKeyName) + " bytes";
  if (name[0] == '.') return "the key name " + name + " begins with a dot";
  if (name.find('/') != std::string::npos) return "the key name " + name + " holds a slash";
  const bool clean = std::all_of(name.begin(), name.end(), [](char c) { return IsPrintable(c) && c != ' '; });
  return clean ? "" : "the key name must be printable and hold no blank";
}

std::size_t TrailerSize(const std::string& package) {
  const std::string_view bytes = package;
  const std::size_t length = ToldTrailerLength(bytes).value_or(0);
  if (length > bytes.size() || bytes.size() - length < kMainHeadSize) return 0;
  return IsTrailer(bytes.substr(bytes.size() - length)) ? length : 0;
}

std::string PrepareForSigning(const SignatureForm& form, std::string& package) {
  if (!form.in_head) {
    if (std::string reason = ReasonAgainstKeyName(form.key_name); !reason.empty()) return reason;
  }
  const bool host_order = IsHostOrder(package);
  if (GetWord(package, kFormatAt, host_order) == kTrailerSigned) package.resize(package.size() - TrailerSize(package));
  std::fill_n(package.begin() + kSignatureAt, kHeadSignatureRoom, '\0');
  PutWord(package, kSignatureLengthAt, 0, host_order);
  PutWord(package, kFormatAt, form.in_head ? kSignedInHead : kTrailerSigned, host_order);
  RenewHeadCrc(package);
  return "";
}

std::string DigestToSign(const SignatureForm& form, const std::string& package) {
  // A signature in the head cannot cover the head.
  const std::string_view covered = std::string_view(package).substr(form.in_head ? kMainHeadSize : 0);
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  if (EVP_Digest(covered.data(), covered.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) return "";
  return {reinterpret_cast<const char*>(digest.data()), length};
}

std::string BlockToSign(const SignatureForm& form, const std::string& digest) {
  std::string block;
  if (form.digest_info) block.assign(kDigestInfo.begin(), kDigestInfo.end());
  return block + digest;
}

std::string Trailer(const SignatureForm& form, const std::string& signature) {
  const std::string text =
      Line(kKeyLabel, form.key_name) + Line(kHashLabel, kTrailerHash) + Line(kSignatureLabel, Base64(signature));
  const TrailerMarkers& markers = form.vendor_markers ? kVendorMarkers : kGenericMarkers;
  const std::size_t length_line = kLengthLabel.size() + kTrailerLengthDigits + 1;
  const std::size_t length = markers.begin.size() + length_line + text.size() + length_line + markers.end.size();
  const std::string counted = Line(kLengthLabel, SixDigits(length));
  return std::string(markers.begin) + counted + text + counted + std::string(markers.end);
}

std::string AttachSignature(const SignatureForm& form, const std::string& signature, std::string& package) {
  if (signature.empty()) return "the signature is empty";
  const bool fits =
      form.in_head ? signature.size() <= kHeadSignatureRoom : Base64(signature).size() <= kMostSignatureText;
  if (!fits) return "the signature is longer than a package can carry";
  if (!form.in_head) {
    package += Trailer(form, signature);
    return "";
  }
  PutWord(package, kSignatureLengthAt, static_cast<std::uint32_t>(signature.size()), IsHostOrder(package));
  std::copy(signature.begin(), signature.end(), package.begin() + kSignatureAt);
  RenewHeadCrc(package);
  return "";
}

std::string SignPackage(const SignatureForm& form, const UniqueKey& key, std::string& package) {
  if (std::string problem = PrepareForSigning(form, package); !problem.empty()) return problem;
  std::string signature;
  if (std::string problem = SignBlock(key, BlockToSign(form, DigestToSign(form, package)), signature); !problem.empty())
    return problem;
  return AttachSignature(form, signature, package);
}

}  // namespace mkpkg
