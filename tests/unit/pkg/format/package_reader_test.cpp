#include "pkg/format/package_reader.h"

#include <sys/stat.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "pkg/format/contained_file.h"
#include "pkg/format/head_check.h"
#include "pkg/format/product_code.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

using enum PackageVerdict;

using ReaderTest = PackageTest;

constexpr std::size_t kImageRow = 3;  // of PackageTest::Contents()

TEST_F(ReaderTest, FindsFilesInTableOrderInBothByteOrders) {
  for (const bool host_order : {false, true}) {
    mkpkg::PackageContents contents = Contents();
    contents.host_order = host_order;
    const std::string package = Compose(contents);
    const UniquePackage reader = Open(package);
    ASSERT_NE(reader, nullptr);
    const std::size_t head = reader->head.files[kImageRow].head_offset;
    for (const auto& [field, value] : {std::pair(offsetof(PackageFileHead, device_code), kTestDeviceTag),
                                       {offsetof(PackageFileHead, unpacked_size), 9U}})
      EXPECT_EQ(mkpkg::GetWord(package, head + field, host_order), value) << field;
    EXPECT_EQ(FindFile(*reader, kSystemImageFile), &reader->head.files[2]) << "the first of two";
    std::uint32_t size = 0;
    EXPECT_EQ(GetFileFromReaderHeadByFileID(0x04000001, reader.get(), &size), nullptr);
    for (std::size_t row = 0; row <= kImageRow; ++row) EXPECT_EQ(FileOf(reader, row), contents.files[row].data);
    char name[sizeof("system.")];
    const UniqueText image(static_cast<char*>(
        GetFileFromReadHeadByFileDesc(&reader->head.files[kImageRow], reader.get(), sizeof(name), &size, name)));
    EXPECT_STREQ(name, "system.") << "cut to its room";
    EXPECT_EQ(MainHeadCheck(0, reader.get()), kSuccess);
  }
}

TEST_F(ReaderTest, RefusesWhatIsNoPackage) {
  constexpr std::size_t kOrderWord = offsetof(PackageMainHead, byte_order);
  constexpr std::size_t kCountWord = offsetof(PackageMainHead, file_count);
  constexpr std::size_t kAttributeWord = offsetof(PackageMainHead, attributes);
  constexpr std::size_t kCrcWord = offsetof(PackageMainHead, crc);
  const std::string good = Compose(Contents());
  const std::tuple<std::size_t, std::uint32_t, PackageVerdict> cases[] = {
      {kOrderWord, 1, kByteOrder},
      {kOrderWord, kHostOrder, kTooManyFiles},
      {kCountWord, 129, kTooManyFiles},
      {kCountWord, 0xFFFFFFFF, kTooManyFiles},
      {kCountWord, 128, kHeadCrc},
      {kAttributeWord, 1, kHeadCrc},
      {kAttributeWord, 3, kKind},
      {offsetof(PackageMainHead, product_tag), 1, kProductTag},
      {kCrcWord, mkpkg::GetWord(good, kCrcWord) | 0x10000, kHeadCrc},
      {kCrcWord, mkpkg::GetWord(good, kCrcWord), kNoTrailer},  // unchanged, and not signed
  };
  const std::size_t descriptors = OpenDescriptors();
  for (const auto& [offset, value, verdict] : cases) {
    std::string package = good;
    mkpkg::PutWord(package, offset, value);
    EXPECT_EQ(Judge(package), verdict) << offset << " " << value;
  }
  EXPECT_EQ(Judge(""), kNoMainHead);
  EXPECT_EQ(Judge(good.substr(0, kMainHeadSize - 1)), kNoMainHead);
  ASSERT_EQ(mkfifo("/mnt/flash:/fifo.bin", 0600), 0);
  EXPECT_EQ(PackageReadFileCreateByFile("/mnt/flash:/fifo.bin"), nullptr) << "nobody waits for its writer";
  EXPECT_EQ(PackageReadFileCreateByFile("/mnt/flash:"), nullptr);
  EXPECT_EQ(OpenDescriptors(), descriptors);
}

TEST_F(ReaderTest, DeviceThatDoesNotKnowItsProductFitsNoPackage) {
  WriteFile(kVersionFile, "");
  mkpkg::PackageContents contents = Contents();
  contents.product_tag = kUnknownTag;
  const UniquePackage reader = Open(Compose(contents));
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kErrPackageMismatch);
  WriteFile(kVersionFile, "ProductTag : 0x01020304\n");
  reader->head.product_tag = kTestProductTag;
  EXPECT_EQ(MainHeadCheck(1, reader.get()), kErrPackageKind);
  EXPECT_EQ(CheckPackageHead(reader.get()), ESH_ERR_FAIL) << "not signed";
  reader->head.crc ^= 1;
  EXPECT_EQ(CheckPackageHead(reader.get()), kErrPackageCrc);
}

}  // namespace
