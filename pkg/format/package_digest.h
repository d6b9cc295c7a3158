#pragma once

#include <cstdint>
#include <cstdio>

class PackageSeal;

/// Computes SHA-256 over `length` bytes from `offset`, reading small blocks: memory does not grow with the package.
/// @param seal   a fresh one, which keeps the digest at its borders on the way.
/// @param digest receives kDigestSize bytes.
/// @param digest_length receives that number; may be none.
/// @return 0, or ESH_ERR_FAIL: fewer bytes, not readable, no memory.
[[nodiscard]] std::uint32_t DigestPackage(std::FILE* stream, std::uint64_t offset, std::uint64_t length,
                                          PackageSeal& seal, std::uint8_t* digest, std::uint32_t* digest_length);

/// DigestPackage without a seal.
[[nodiscard]] std::uint32_t PKG_GetDigestFromPkg(std::FILE* stream, std::uint64_t offset, std::uint64_t length,
                                                 std::uint8_t* digest, std::uint32_t* digest_length);
