#include "pkg/format/signature.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>
#include <span>

#include "pkg/format/byte_order.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_digest.h"
#include "pkg/format/package_seal.h"
#include "pkg/format/public_key.h"
#include "pkg/format/verdict.h"
#include "util/regular_file.h"
#include "util/result.h"

namespace {

/// Where a second main head ends. The signed part of a package whose signature is in the head must not begin with one:
/// see JudgeSignedPart.
constexpr std::uint64_t kInnerHeadEnd = 2 * kMainHeadSize;

constexpr std::uint32_t kHeadForm = 0;
constexpr std::uint32_t kTrailerForm = 1;
constexpr std::uint32_t kNoForm = 2;

std::uint32_t FormOf(const PackageMainHead& head) {
  return head.signature_format == kTrailerSigned ? kTrailerForm : kHeadForm;
}

/// A signature, and which bytes of the package it is for.
struct Claim {
  std::uint64_t start;
  std::uint64_t end;
  std::uint8_t signature[kHeadSignatureRoom];
  std::uint32_t signature_length;
  PublicKey key;
};

/// The path must name the file that is open, so that what follows by its path speaks of the same package.
PackageVerdict JudgePath(const PKG_READER_S& reader, std::uint64_t& size) {
  struct stat opened;
  struct stat named;
  if (reader.source.usMode != kPackageInFile || fstat(fileno(reader.source.stream), &opened) != 0)
    return PackageVerdict::kUnreadable;
  const std::uint32_t found = PKG_Fstat(reader.szPath, &named);
  if (found == kErrPackageMismatch) return PackageVerdict::kLink;
  if (found != kSuccess || named.st_dev != opened.st_dev || named.st_ino != opened.st_ino)
    return PackageVerdict::kReplaced;
  size = static_cast<std::uint64_t>(opened.st_size);
  return PackageVerdict::kGood;
}

PackageVerdict ReadTrailerClaim(PKG_READER_S& reader, std::uint64_t size, const char* key_directory, Claim& claim) {
  PKG_CSS_S css = {};
  const PackageVerdict found = ReadTrailer(reader.source.stream, size, reader.head.minimum_payload, &css);
  const std::unique_ptr<PKG_CSS_S, CssFreer> owned(&css);
  if (found != PackageVerdict::kGood) return found;
  const std::uint32_t length = css.size - 1;
  const auto fields = ParseTrailer({css.text, length});
  if (!fields || fields->length != length) return PackageVerdict::kTrailerForm;
  if (DecodeSignature(fields->signature, claim.signature, &claim.signature_length) != kSuccess)
    return PackageVerdict::kSignatureText;
  claim.start = 0;
  claim.end = size - length;
  return ReadPublicKey(key_directory, fields->key, claim.key);
}

PackageVerdict ReadHeadClaim(const PKG_READER_S& reader, std::uint64_t size, const char* key_directory, Claim& claim) {
  if (size < kMainHeadSize) return PackageVerdict::kUnreadable;
  if (reader.head.signature_length > sizeof(claim.signature)) return PackageVerdict::kSignatureLength;
  claim.start = kMainHeadSize;
  claim.end = size;
  std::ranges::copy(reader.head.signature, claim.signature);
  claim.signature_length = reader.head.signature_length;
  return ReadPublicKey(key_directory, kHeadFormKey, claim.key);
}

/// Marks the pieces that a reader hands out: the contained files' heads and data. A file head that changes before it is
/// digested only makes its file unreadable.
void PlanSeal(PKG_READER_S& reader, PackageSeal& seal) {
  seal.AddBorder(0);
  seal.AddBorder(kMainHeadSize);
  seal.AddBorder(kInnerHeadEnd);
  for (const PackageFileEntry& file : std::span(reader.head.files).first(reader.head.file_count)) {
    PackageFileHead head;
    if (!SeekSource(reader.source, file.head_offset) || !ReadSource(reader.source, &head, sizeof(head))) continue;
    if (head.byte_order != kHostOrder) ConvertFileHead(head);
    const std::uint64_t data = std::uint64_t{file.head_offset} + kFileHeadSize;
    seal.AddBorder(file.head_offset);
    seal.AddBorder(data);
    seal.AddBorder(data + head.stored_size);
  }
  seal.SortBorders();
}

/// Whether the main head that the reader uses was digested. In the head form it is not signed.
bool SealHoldsMainHead(const PackageSeal& seal, const PackageMainHead& head) {
  PackageMainHead stored = head;
  if (head.byte_order != kHostOrder) ConvertMainHead(stored, head.file_count);
  return seal.Holds(0, &stored, sizeof(stored));
}

/// Whether a signature in the main head can be for what was digested. One key may serve both forms: then a package with
/// a trailer could be put behind a head of the forger's own, and the signature of its trailer would hold for it.
PackageVerdict JudgeSignedPart(PKG_READER_S& reader, std::uint64_t size, const PackageSeal& seal) {
  if (size < kInnerHeadEnd) return PackageVerdict::kGood;
  PackageMainHead inner;
  if (!SeekSource(reader.source, kMainHeadSize) || !ReadSource(reader.source, &inner, sizeof(inner)) ||
      !seal.Holds(kMainHeadSize, &inner, sizeof(inner)))
    return PackageVerdict::kUnreadable;
  const bool is_other_form =
      inner.signature_format == kTrailerSigned || FromBig32(inner.signature_format) == kTrailerSigned;
  return is_other_form ? PackageVerdict::kWrongSignature : PackageVerdict::kGood;
}

}  // namespace

PackageVerdict JudgeSignature(PKG_READER_S* reader, const char* key_directory) {
  std::uint64_t size = 0;
  PackageVerdict verdict = JudgePath(*reader, size);
  if (verdict != PackageVerdict::kGood) return verdict;
  const bool trailer_form = FormOf(reader->head) == kTrailerForm;
  Claim claim;
  verdict = trailer_form ? ReadTrailerClaim(*reader, size, key_directory, claim)
                         : ReadHeadClaim(*reader, size, key_directory, claim);
  if (verdict != PackageVerdict::kGood) return verdict;
  std::unique_ptr<PackageSeal> seal(new (std::nothrow) PackageSeal);
  if (seal == nullptr) return PackageVerdict::kNoMemory;
  PlanSeal(*reader, *seal);
  std::uint8_t digest[kDigestSize];
  if (DigestPackage(reader->source.stream, claim.start, claim.end - claim.start, *seal, digest, nullptr) != kSuccess ||
      (trailer_form && !SealHoldsMainHead(*seal, reader->head)))
    return PackageVerdict::kUnreadable;
  if (!trailer_form) {
    verdict = JudgeSignedPart(*reader, size, *seal);
    if (verdict != PackageVerdict::kGood) return verdict;
  }
  if (!SignatureHolds(claim.key, std::span(claim.signature).first(claim.signature_length), digest))
    return PackageVerdict::kWrongSignature;
  delete reader->seal;
  reader->seal = seal.release();
  return PackageVerdict::kGood;
}

std::uint32_t PKG_IsOnePkgAuthOK(const char* path) {
  const UniquePackage reader(PackageReadFileCreateByFile(path));
  return reader != nullptr && JudgeSignature(reader.get(), kSignKeyDirectory) == PackageVerdict::kGood ? 1 : 0;
}

std::uint32_t PKG_GetSignFormat(const char* path) {
  PackageMainHead head;
  return PKG_GetMainHeadByFileName(path, &head) == kSuccess ? FormOf(head) : kNoForm;
}

std::uint32_t PKG_Fstat(const char* path, struct stat* stat) {
  if (OpenRegularFile(path, Links::kRefuse, stat) != nullptr) return kSuccess;
  return errno == ELOOP ? kErrPackageMismatch : ESH_ERR_FAIL;
}

std::uint64_t PKG_GetFileSizeByUserPath(const char* path) {
  struct stat stat;
  return PKG_Fstat(path, &stat) == kSuccess ? static_cast<std::uint64_t>(stat.st_size) : 0;
}
