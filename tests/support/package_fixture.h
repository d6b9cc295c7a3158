#pragma once

#include <string>

#include "tests/support/private_root.h"
#include "tools/mkpkg/compression.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/package_writer.h"

inline constexpr std::uint32_t kTestProductTag = 0x01020304;
inline constexpr std::uint32_t kTestDeviceTag = 0x0A0B0C0D;
inline constexpr char kTestPackage[] = "/mnt/flash:/good.bin";

/// A device that knows what it is and has the keys of one maker: "maker" (514 bytes), "prefixed" (516 bytes) and the
/// one for signatures in the head; and packages for it.
struct PackageTest : PrivateRootTest {
  /// Makes the device's files and keys.
  void SetUp() override;

  /// The maker's private key; a new one in each process.
  static const mkpkg::UniqueKey& MakerKey();
  /// A system package: compatibility list, description, an image for another device and one for this one. It
  /// is for boot images of version V1-R1-R1, as which it can itself stand in.
  static mkpkg::PackageContents Contents();
  /// An unsigned package.
  static std::string Compose(const mkpkg::PackageContents& contents);
  /// Signs with the maker's key. Fails the test when it cannot.
  static std::string Sign(std::string package, const mkpkg::SignatureForm& form);
  /// Contents(), signed with a trailer that names "maker", or in the head.
  static std::string GoodPackage(bool in_head = false);

  /// Data as a package tool packs them.
  static std::string Compressed(mkpkg::Compression how, const std::string& data);
};
