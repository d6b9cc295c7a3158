#include "tools/mkpkg/package_signer.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_format.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/ascii.h"
#include "util/signals_held.h"

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

struct DigestFreer {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

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

/// @return the bytes of a part of a file; fewer when it cannot be read.
std::string Part(int fd, std::uint64_t begin, std::uint64_t end) {
  std::string bytes(end - begin, '\0');
  bytes.resize(
      static_cast<std::size_t>(std::max<ssize_t>(pread(fd, bytes.data(), bytes.size(), static_cast<off_t>(begin)), 0)));
  return bytes;
}

/// Puts a main head and what stands behind the signed part. The end comes first: it may find no room.
bool PutEnds(int fd, const std::string& head, std::uint64_t end, const std::string& behind) {
  return WriteAt(fd, end, behind) && ftruncate(fd, static_cast<off_t>(end + behind.size())) == 0 &&
         WriteAt(fd, 0, head) && fsync(fd) == 0;
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

std::string FindTrailer(int fd, std::uint64_t size) {
  const std::size_t length = ToldTrailerLength(Part(fd, size - kTrailerTail, size)).value_or(0);
  if (size < kMainHeadSize + length) return "";
  const std::string trailer = Part(fd, size - length, size);
  return IsTrailer(trailer) ? trailer : "";
}

std::string PrepareForSigning(const SignatureForm& form, int fd, PreparedPackage& package) {
  if (std::string reason = form.in_head ? "" : ReasonAgainstKeyName(form.key_name); !reason.empty()) return reason;
  package.head = Part(fd, 0, kMainHeadSize);
  if (!HasMainHead(package.head)) return "it is no package";
  const bool host_order = IsHostOrder(package.head);
  package.end = static_cast<std::uint64_t>(lseek(fd, 0, SEEK_END));
  if (GetWord(package.head, kFormatAt, host_order) == kTrailerSigned)
    package.end -= FindTrailer(fd, package.end).size();
  std::fill_n(package.head.begin() + kSignatureAt, kHeadSignatureRoom, '\0');
  PutWord(package.head, kSignatureLengthAt, 0, host_order);
  PutWord(package.head, kFormatAt, form.in_head ? kSignedInHead : kTrailerSigned, host_order);
  RenewHeadCrc(package.head);
  return "";
}

std::string DigestToSign(const SignatureForm& form, int fd, const PreparedPackage& package, std::string& digest) {
  const std::unique_ptr<EVP_MD_CTX, DigestFreer> context(EVP_MD_CTX_new());
  // A signature in the head cannot cover the head.
  const std::size_t head = form.in_head ? 0 : package.head.size();
  if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1 ||
      EVP_DigestUpdate(context.get(), package.head.data(), head) != 1)
    return "out of memory";
  FilePieces rest(fd, kMainHeadSize, package.end - kMainHeadSize);
  std::string problem = FeedPieces(rest, [&](std::string_view piece) {
    return EVP_DigestUpdate(context.get(), piece.data(), piece.size()) == 1 ? "" : "out of memory";
  });
  digest.assign(kDigestSize, '\0');
  if (problem.empty() &&
      EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char*>(digest.data()), nullptr) != 1)
    problem = "out of memory";
  return problem;
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

std::string ReasonAgainstSignature(const SignatureForm& form, const std::string& signature) {
  if (signature.empty()) return "the signature is empty";
  const bool fits =
      form.in_head ? signature.size() <= kHeadSignatureRoom : Base64(signature).size() <= kMostSignatureText;
  return fits ? "" : "the signature is longer than a package can carry";
}

bool AttachSignature(const SignatureForm& form, const std::string& signature, int fd, PreparedPackage package) {
  if (form.in_head) {
    PutWord(package.head, kSignatureLengthAt, static_cast<std::uint32_t>(signature.size()), IsHostOrder(package.head));
    std::copy(signature.begin(), signature.end(), package.head.begin() + kSignatureAt);
    RenewHeadCrc(package.head);
  }
  const std::string head_before = Part(fd, 0, kMainHeadSize);
  const std::string behind_before = Part(fd, package.end, static_cast<std::uint64_t>(lseek(fd, 0, SEEK_END)));
  const SignalsHeld held;  // an operator's Ctrl+C must not come between two changes that belong together
  if (PutEnds(fd, package.head, package.end, form.in_head ? "" : Trailer(form, signature))) return true;
  const int error = errno;
  (void)PutEnds(fd, head_before, package.end, behind_before);  // there was room for it
  errno = error;
  return false;
}

std::string SignPackage(const SignatureForm& form, const UniqueKey& key, std::string& package) {
  return InMemory(
      package,
      [&](int fd) {
        PreparedPackage prepared;
        std::string digest;
        std::string signature;
        std::string problem = PrepareForSigning(form, fd, prepared);
        if (problem.empty()) problem = DigestToSign(form, fd, prepared, digest);
        if (problem.empty()) problem = SignBlock(key, BlockToSign(form, digest), signature);
        if (problem.empty()) problem = ReasonAgainstSignature(form, signature);
        return problem.empty() && !AttachSignature(form, signature, fd, prepared) ? "cannot write" : problem;
      });
}

}  // namespace mkpkg
