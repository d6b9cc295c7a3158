#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "pkg/format/fips_crypto.h"
#include "pkg/format/package_format.h"

/// What was digested when a package was verified, so that pieces of it which are read again later can be held against
/// it: a medium can be swapped and a file rewritten after its signature was found good.
///
/// The seal keeps the running digest at the borders of the pieces that will be read. A piece is the verified one if it
/// leads the digest from the state at its start to the state at its end. That costs nothing while the package is
/// verified, one digest over the piece when it is used, and memory that does not depend on the package's size.
class PackageSeal {
 public:
  PackageSeal() = default;
  PackageSeal(const PackageSeal&) = delete;
  PackageSeal& operator=(const PackageSeal&) = delete;
  /// Frees the digests that were kept.
  ~PackageSeal();

  /// Adds a border of a later piece, before the package is digested. Borders in excess are left out.
  void AddBorder(std::uint64_t offset);
  /// Ends the adding.
  void SortBorders();

  /// @return the first border behind `offset`, or the largest number when there is none.
  [[nodiscard]] std::uint64_t NextBorder(std::uint64_t offset) const;
  /// Keeps the state of the digest, which has come to `offset` for the first time, if that is a border. @return false
  /// when memory is short.
  [[nodiscard]] bool Keep(std::uint64_t offset, const FIPS_MD_CTX& running);

  /// Whether a piece of the package was digested.
  [[nodiscard]] bool Covers(std::uint64_t offset, std::uint64_t length) const;
  /// Whether a piece of the package was digested exactly like this.
  [[nodiscard]] bool Holds(std::uint64_t offset, const void* bytes, std::uint64_t length) const;

 private:
  struct Border {
    std::uint64_t offset;
    FIPS_MD_CTX digest;  ///< none until the digest has come by
  };

  [[nodiscard]] std::span<const Border> Borders() const { return {borders_, count_}; }
  [[nodiscard]] const Border* Find(std::uint64_t offset) const;

  /// The main head's two, one behind a second main head, and three of each contained file.
  static constexpr std::size_t kMostBorders = 3 + 3 * kMaxPackageFiles;

  Border borders_[kMostBorders] = {};
  std::size_t count_ = 0;
};
