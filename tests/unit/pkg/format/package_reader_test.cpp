#include "pkg/format/package_reader.h"

#include <sys/stat.h>

#include "pkg/format/head_check.h"
#include "pkg/format/product_code.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/package_bytes.h"

namespace {

using ReaderTest = PackageTest;

TEST_F(ReaderTest, RefusesWhatIsNoPackageForThisDevice) {
  constexpr std::size_t kCrcWord = offsetof(PackageMainHead, crc);
  const std::string good = Compose(Contents());
  EXPECT_EQ(Judge(WithHeadWord(good, offsetof(PackageMainHead, file_count), 128)), PackageVerdict::kNoTrailer);
  std::string damaged = good;
  mkpkg::PutWord(damaged, kCrcWord, mkpkg::GetWord(good, kCrcWord) | 0x10000);
  EXPECT_EQ(Judge(damaged), PackageVerdict::kHeadCrc);
  WriteFile(kVersionFile, "");
  const UniquePackage of_nobody = Open(WithHeadWord(good, offsetof(PackageMainHead, product_tag), kUnknownTag));
  EXPECT_EQ(CheckPackageHead(of_nobody.get()), kErrPackageMismatch) << "a device that does not know its product";
  const std::size_t descriptors = OpenDescriptors();
  ASSERT_EQ(mkfifo("/mnt/flash:/fifo.bin", 0600), 0);
  for (const char* path : {"/mnt/flash:/fifo.bin", "/mnt/flash:"})
    EXPECT_EQ(PackageReadFileCreateByFile(path), nullptr) << "nobody waits for the writer of " << path;
  EXPECT_EQ(OpenDescriptors(), descriptors);
}

}  // namespace
