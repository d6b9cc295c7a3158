#include "pkg/format/package_digest.h"

#include <algorithm>

#include "pkg/format/fips_crypto.h"
#include "pkg/format/package_seal.h"
#include "util/result.h"

namespace {

constexpr std::uint64_t kBlock = 4096;

/// Digests from `offset` up to `end`. A block ends early at a border of the seal.
bool AddRange(FIPS_MD_CTX& ctx, std::FILE* stream, std::uint64_t offset, std::uint64_t end, PackageSeal& seal) {
  if (fseeko(stream, static_cast<off_t>(offset), SEEK_SET) != 0 || !seal.Keep(offset, ctx)) return false;
  while (offset < end) {
    std::uint8_t block[kBlock];
    const std::size_t length = std::min({kBlock, seal.NextBorder(offset) - offset, end - offset});
    if (std::fread(block, 1, length, stream) != length || FIPS_digestupdate(&ctx, block, length) != 1) return false;
    offset += length;
    if (!seal.Keep(offset, ctx)) return false;
  }
  return true;
}

}  // namespace

std::uint32_t DigestPackage(std::FILE* stream, std::uint64_t offset, std::uint64_t length, PackageSeal& seal,
                            std::uint8_t* digest, std::uint32_t* digest_length) {
  const evp_md_st* method = FIPS_evp_sha256();
  FIPS_MD_CTX ctx;
  FIPS_md_ctx_init(&ctx);
  const bool added = FIPS_digestinit(&ctx, method) == 1 && AddRange(ctx, stream, offset, offset + length, seal);
  const bool ended = added && FIPS_digestfinal(&ctx, digest, digest_length) == 1;  // one that never began has no end
  FIPS_md_ctx_cleanup(&ctx);
  return ended ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t PKG_GetDigestFromPkg(std::FILE* stream, std::uint64_t offset, std::uint64_t length, std::uint8_t* digest,
                                   std::uint32_t* digest_length) {
  PackageSeal no_borders;
  return DigestPackage(stream, offset, length, no_borders, digest, digest_length);
}
