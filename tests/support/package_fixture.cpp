#include "tests/support/package_fixture.h"

#include <filesystem>
#include <iterator>

#include "pkg/head_check.h"
#include "pkg/product_code.h"
#include "pkg/signature.h"
#include "tools/mkpkg/device_key.h"

namespace {

std::string DeviceKey(std::size_t size) {
  std::string file;
  EXPECT_EQ(mkpkg::EncodeDeviceKey(PackageTest::MakerKey(), size, file), "");
  return file;
}

}  // namespace

void PackageTest::SetUp() {
  PrivateRootTest::SetUp();
  AddMedium("flash:");
  WriteFile(kVersionFile, "ProductTag : 0x01020304\nDeviceTag : 0x0A0B0C0D\n");
  const std::string keys = std::string(kSignKeyDirectory) + "/";
  WriteFile(keys + "maker.key", DeviceKey(mkpkg::kShortKeyFile));
  WriteFile(keys + "prefixed.key", DeviceKey(mkpkg::kLongKeyFile));
  WriteFile(keys + "digital_sign_old_public.key", DeviceKey(mkpkg::kShortKeyFile));
}

const mkpkg::UniqueKey& PackageTest::MakerKey() {
  static const mkpkg::UniqueKey maker = [] {
    mkpkg::UniqueKey key;
    EXPECT_EQ(mkpkg::GenerateKey(mkpkg::kLeastExponent, key), "");
    return key;
  }();
  return maker;
}

mkpkg::PackageContents PackageTest::Contents() {
  mkpkg::PackageContents contents;
  contents.product_tag = kTestProductTag;
  contents.files = {
      {.id = kCompatibilityFile, .name = "compatible.txt", .data = "[boot]\nV1-R1\n"},
      {.id = kDescriptionFile, .name = "description.txt", .data = "Vendor: Kelvane\nProduct version: R1\n"},
      {.id = kSystemImageFile, .name = "other.gz", .data = "for another device", .device_code = 1},
      {.id = kSystemImageFile, .name = "system.gz", .data = "the image", .device_code = kTestDeviceTag},
  };
  return contents;
}

std::string PackageTest::Compose(const mkpkg::PackageContents& contents) {
  std::string package;
  EXPECT_EQ(mkpkg::ComposePackage(contents, package), "");
  return package;
}

std::string PackageTest::Sign(std::string package, const mkpkg::SignatureForm& form) {
  EXPECT_EQ(mkpkg::SignPackage(form, MakerKey(), package), "");
  return package;
}

std::string PackageTest::GoodPackage() { return Sign(Compose(Contents()), {.key_name = "maker"}); }

UniquePackage PackageTest::Open(const std::string& package) {
  WriteFile(kTestPackage, package);
  return UniquePackage(PackageReadFileCreateByFile(kTestPackage));
}

PackageVerdict PackageTest::Judge(const std::string& package) {
  WriteFile(kTestPackage, package);
  PKG_READER_S* reader = nullptr;
  const PackageVerdict opened = OpenPackage(kTestPackage, reader);
  const UniquePackage owned(reader);
  return reader == nullptr ? opened : JudgePackage(reader, kTestProductTag, kSignKeyDirectory);
}

std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}
