#include "pkg/format/package_seal.h"

#include <algorithm>
#include <limits>

#include "pkg/format/public_key.h"

namespace {

struct ScopedDigest {
  ScopedDigest() { FIPS_md_ctx_init(&ctx); }
  ScopedDigest(const ScopedDigest&) = delete;
  ScopedDigest& operator=(const ScopedDigest&) = delete;
  ~ScopedDigest() { FIPS_md_ctx_cleanup(&ctx); }

  FIPS_MD_CTX ctx;
};

/// Ends a copy of a digest. @param bytes are added first.
bool EndCopy(const FIPS_MD_CTX& digest, const void* bytes, std::size_t length, std::uint8_t (&out)[kDigestSize]) {
  ScopedDigest copy;
  return FIPS_md_ctx_copy(&copy.ctx, &digest) == 1 && FIPS_digestupdate(&copy.ctx, bytes, length) == 1 &&
         FIPS_digestfinal(&copy.ctx, out, nullptr) == 1;
}

}  // namespace

PackageSeal::~PackageSeal() {
  for (Border& border : borders_) FIPS_md_ctx_cleanup(&border.digest);
}

void PackageSeal::AddBorder(std::uint64_t offset) {
  if (count_ < kMostBorders) borders_[count_++].offset = offset;
}

void PackageSeal::SortBorders() { std::ranges::sort(borders_, borders_ + count_, {}, &Border::offset); }

std::uint64_t PackageSeal::NextBorder(std::uint64_t offset) const {
  const auto next = std::ranges::upper_bound(Borders(), offset, {}, &Border::offset);
  return next == Borders().end() ? std::numeric_limits<std::uint64_t>::max() : next->offset;
}

bool PackageSeal::Keep(std::uint64_t offset, const FIPS_MD_CTX& running) {
  const auto border = std::ranges::lower_bound(borders_, borders_ + count_, offset, {}, &Border::offset);
  if (border == borders_ + count_ || border->offset != offset) return true;
  FIPS_md_ctx_init(&border->digest);
  return FIPS_md_ctx_copy(&border->digest, &running) == 1;
}

const PackageSeal::Border* PackageSeal::Find(std::uint64_t offset) const {
  const auto border = std::ranges::lower_bound(Borders(), offset, {}, &Border::offset);
  const bool kept = border != Borders().end() && border->offset == offset && border->digest.context != nullptr;
  return kept ? &*border : nullptr;
}

bool PackageSeal::Covers(std::uint64_t offset, std::uint64_t length) const {
  return Find(offset) != nullptr && Find(offset + length) != nullptr;
}

bool PackageSeal::Holds(std::uint64_t offset, const void* bytes, std::uint64_t length) const {
  const Border* start = Find(offset);
  const Border* end = Find(offset + length);
  std::uint8_t found[kDigestSize];
  std::uint8_t verified[kDigestSize];
  return start != nullptr && end != nullptr && EndCopy(start->digest, bytes, length, found) &&
         EndCopy(end->digest, nullptr, 0, verified) && std::ranges::equal(found, verified);
}
