#include "pkg/format/package_reader.h"

#include <sys/stat.h>

#include <tuple>

#include "pkg/format/head_check.h"
#include "pkg/format/product_code.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

using enum PackageVerdict;

using ReaderTest = PackageTest;

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
