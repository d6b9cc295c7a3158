#include "tests/support/package_fixture.h"

#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "tools/mkpkg/device_key.h"

void PackageTest::SetUp() {
  AddMedium("flash:");
  WriteFile(kVersionFile, "ProductTag : 0x01020304\nDeviceTag : 0x0A0B0C0D\n");
  const std::pair<const char*, std::size_t> keys[] = {
      {"maker", mkpkg::kShortKeyFile}, {"prefixed", mkpkg::kLongKeyFile}, {kHeadFormKey, mkpkg::kShortKeyFile}};
  for (const auto& [name, size] : keys) {
    std::string file;
    EXPECT_EQ(mkpkg::EncodeDeviceKey(MakerKey(), size, file), "");
    WriteFile(std::string(kSignKeyDirectory) + "/" + name + kKeySuffix, file);
  }
}

const mkpkg::UniqueKey& PackageTest::MakerKey() {
  static mkpkg::UniqueKey maker;
  if (maker == nullptr) EXPECT_EQ(mkpkg::GenerateKey(mkpkg::kLeastExponent, maker), "");
  return maker;
}

mkpkg::PackageContents PackageTest::Contents() {
  mkpkg::PackageContents contents;
  contents.product_tag = kTestProductTag;
  contents.files = {
      {.id = kCompatibilityFile, .name = "compatible.txt", .data = "[boot]\nV1-R1\n"},
      {.id = kDescriptionFile,
       .name = "description.txt",
       .data = "Vendor: Kelvane\nPlatform version: V1-R1\nProduct version: R1\n"},
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

std::string PackageTest::GoodPackage(bool in_head) {
  return Sign(Compose(Contents()), {.in_head = in_head, .key_name = "maker"});
}

std::string PackageTest::Compressed(mkpkg::Compression how, const std::string& data) {
  std::string compressed;
  const mkpkg::Sink take = [&](std::string_view piece) { return compressed += piece, ""; };
  EXPECT_EQ(mkpkg::Compress(
                how, [&](const mkpkg::Sink& sink) { return sink(data); }, take),
            "");
  return compressed;
}
