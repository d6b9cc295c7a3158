#include "pkg/install_load.h"

#include <malloc.h>

#include <utility>

#include "pkg/boot_image.h"
#include "pkg/compatibility.h"
#include "pkg/package_name.h"
#include "pkg/process_runner.h"
#include "pkg/verdict.h"
#include "shell/argument_list.h"
#include "shell/result.h"
#include "tests/support/package_fixture.h"
#include "util/vector.h"

namespace {

UniqueLines Lines(const std::string& text) { return UniqueLines(ReadBuffCreateByMem(text.data(), text.size())); }

TEST(Compatibility, WantsTheBootImagesVersionBehindTheBootLine) {
  const struct {
    const char* list;
    const char* product;
    const char* running;
    bool complies;
  } cases[] = {
      {"[boot]\nV1\n", "R1", "V1-R1", true},
      {"[boot]\nV1\n", "", "V1", true},
      {"[boot]\nV1\n", "R1", "V1", false},
      {"[boot]\nV1-R1\n", "", "V1-R1", true},
      {"[boot]\n\t V1 \r\n", "", "V1", true},
      {"V1\n[boot]\nV2\n", "", "V1", false},
      {"V1\n", "", "V1", false},
      {"[Boot]\nV1\n", "", "V1", false},
      {"[boot]\n[other]\nV1", "", "V1", true},
      {"[boot]", "", "[boot]", true},
      {"[boot]\n\nV1\n", "", "", false},
      {"[boot]\nV1\n", "R1", "V1-R10", false},
      {"[boot]\n\nV1\n", "R1", "-R1", true},
      {"[boot]\nV1-R\n", "R1", "V1-R1", false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(IsCompliant(Lines(c.list).get(), c.product, c.running), c.complies) << c.list << c.running;
  }
}

TEST(Compatibility, VersionsComeFromTheDescription) {
  const struct {
    const char* text;
    const char* running;
    const char* product;
  } cases[] = {
      {"Platform version: V1\nProduct version: R1\nPlatform version: V2\nProduct version: R2\n", "V1-R1", "R2"},
      {"Product version: R1\nPlatform version: V1\n", "-R1", "R1"},
      {"Platform version: V1\n  PRODUCT version: R1 \n", "V1", "R1"},
      {"Platform version:V1\n", "", ""},
  };
  for (const auto& c : cases) {
    char running[kRunningVersionRoom];
    char product[kProductVersionRoom];
    ReadBootVersion(Lines(c.text).get(), running);
    ReadProductVersion(Lines(c.text).get(), product);
    EXPECT_STREQ(running, c.running) << c.text;
    EXPECT_STREQ(product, c.product) << c.text;
  }
}

TEST(PackageName, NeedsItsSuffixAndMore) {
  const struct {
    const char* name;
    std::size_t longest;
    std::uint16_t fits;
  } cases[] = {{"a.bin", 5, 1},  {"a.bin", 4, 0}, {"A.BiN", 9, 1}, {".bin", 9, 0},      {"", 9, 0},
               {"a.bin.", 9, 0}, {"a.bi", 9, 0},  {"abin", 9, 0},  {"a.bin.bin", 9, 1}, {"flash:/.bin", 99, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(ESH_FilterFile(c.name, ".bin", c.longest), c.fits) << c.name;
  }
}

TEST(ProcessRunner, SplitsAtBlanksAndTabsOnly) {
  VEC_S* words = PKG_ParserVecAlloc(" \t/bin/true \"a  b\"\t\tc\\ ");
  ASSERT_EQ(VEC_GetCount(words), 4U);
  EXPECT_STREQ(static_cast<char*>(words->ppvArray[1]), "\"a");
  EXPECT_STREQ(static_cast<char*>(words->ppvArray[3]), "c\\");
  ParserVecFree(words);
  EXPECT_EQ(PKG_System("/bin/true"), kSuccess);
  for (const char* line : {"/bin/false", "true", "", " \t", "/bin/no-such-tool"}) {
    EXPECT_EQ(PKG_System(line), ESH_ERR_FAIL) << line;
  }
}

struct InstallLoad : PackageTest {};

TEST_F(InstallLoad, BootImageDescriptionHasALimit) {
  WriteFile("/proc/sys/61000/3", "flash:/good.bin\n");
  mkpkg::PackageContents contents = Contents();
  mkpkg::PackageFile& description = contents.files[1];
  for (const auto& [size, version] : {std::pair(1U << 20, "V-R1"), {(1U << 20) + 1, ""}}) {
    description.data = "Platform version: V\nProduct version: R1\n";
    description.data.resize(size, '\n');
    WriteFile(kTestPackage, Compose(contents));
    char running[kRunningVersionRoom];
    ReadRunningVersion(running);
    EXPECT_STREQ(running, version) << size;
  }
}

/// Refuses by every code, many times: what one refusal keeps, an evening of tries would use up.
TEST_F(InstallLoad, RefusalsLeaveNothingOpen) {
  mkpkg::PackageContents foreign = Contents();
  foreign.product_tag = 1;
  std::string crc = GoodPackage();
  crc[16] = static_cast<char>(crc[16] ^ 1);
  std::string forged = GoodPackage();
  forged[kMainHeadSize + kFileHeadSize] ^= 1;
  mkpkg::PackageContents plain = Contents();
  plain.files.erase(plain.files.begin(), plain.files.begin() + 2);
  const struct {
    std::string package;
    std::uint32_t code;
  } cases[] = {
      {"short", ESH_ERR_FAIL},
      {Sign(Compose(foreign), {.key_name = "maker"}), kErrPackageMismatch},
      {crc, kErrPackageCrc},
      {forged, ESH_ERR_FAIL},
      {Sign(Compose(plain), {.key_name = "maker"}), ESH_ERR_FAIL},
      {GoodPackage(), ESH_ERR_FAIL},  // for another boot image than this device's, which has none
  };
  testing::internal::CaptureStdout();
  for (const auto& c : cases) {
    WriteFile(kTestPackage, c.package);
    EXPECT_EQ(ESH_PKG_InstallLoadSystem("flash:/good.bin"), c.code);
  }
  const std::size_t descriptors = OpenDescriptors();
  const std::size_t memory = mallinfo2().uordblks;
  for (int i = 0; i < 50; ++i) {
    for (const auto& c : cases) {
      WriteFile(kTestPackage, c.package);
      EXPECT_EQ(ESH_PKG_InstallLoadSystem("flash:/good.bin"), c.code);
    }
  }
  const std::size_t descriptors_now = OpenDescriptors();
  const std::size_t memory_now = mallinfo2().uordblks;
  (void)testing::internal::GetCapturedStdout();
  EXPECT_EQ(descriptors_now, descriptors);
  EXPECT_LE(memory_now, memory + 16384) << "less than a main head for each";
}

}  // namespace
