#include "pkg/format/signature.h"

#include <sys/stat.h>

#include <filesystem>

#include "pkg/format/head_check.h"
#include "pkg/format/product_code.h"
#include "pkg/format/public_key.h"
#include "tests/support/package_fixture.h"

namespace {

namespace fs = std::filesystem;
using enum PackageVerdict;

constexpr std::size_t kDescriptionRow = 1;  // of PackageTest::Contents()
constexpr std::size_t kImageRow = 3;
constexpr std::size_t kDescriptionHead = kMainHeadSize + kFileHeadSize + 13;

struct SignatureTest : PackageTest {
  static PackageVerdict JudgeOpen(const UniquePackage& reader) {
    return JudgePackage(reader.get(), kTestProductTag, kSignKeyDirectory);
  }
};

TEST_F(SignatureTest, ADeviceThatDoesNotKnowItsProductTakesNoPackage) {
  WriteFile(kVersionFile, "");
  mkpkg::PackageContents of_nobody = Contents();
  of_nobody.product_tag = kUnknownTag;
  EXPECT_EQ(CheckPackageHead(Open(Compose(of_nobody)).get()), kErrPackageMismatch);
}

TEST_F(SignatureTest, KeyWithASmallExponentOrAnEvenModulusIsRefused) {
  const std::string path = std::string(kSignKeyDirectory) + "/prefixed" + kKeySuffix;
  const std::string good = ReadFile(path);
  for (const auto& [end, bytes] :
       {std::pair(std::size_t{3}, std::string("\0\xFF\xFF", 3)), {kKeyNumberSize + 1, "\x02"}}) {
    WriteFile(path, std::string(good).replace(good.size() - end, bytes.size(), bytes));
    EXPECT_EQ(JudgeOpen(Open(Sign(Compose(Contents()), {.key_name = "prefixed", .digest_info = true}))), kKeyValue);
  }
}

TEST_F(SignatureTest, PathMustNameTheOpenFile) {
  for (const bool in_head : {false, true}) {
    const std::string good = GoodPackage(in_head);
    const UniquePackage reader = Open(good);
    fs::rename(kTestPackage, "/mnt/flash:/aside.bin");
    EXPECT_EQ(JudgeOpen(reader), kReplaced);
    WriteFile(kTestPackage, good);
    EXPECT_EQ(JudgeOpen(reader), kReplaced);
    fs::remove(kTestPackage);
    fs::create_symlink("/mnt/flash:/aside.bin", kTestPackage);
    EXPECT_EQ(JudgeOpen(reader), kLink);
    fs::remove(kTestPackage);
  }
  ASSERT_EQ(mkfifo(kTestPackage, 0600), 0);
  EXPECT_EQ(PackageReadFileCreateByFile(kTestPackage), nullptr) << "nobody waits for its writer";
}

TEST_F(SignatureTest, VerifiedPackageHandsOutOnlyWhatWasVerified) {
  mkpkg::PackageContents contents = Contents();
  contents.files[kImageRow].data.resize(100000);  // so that no stream still holds the description when it is asked for
  for (const bool in_head : {false, true}) {
    for (const std::size_t changed : {kDescriptionHead + kFileHeadSize, kDescriptionHead + 50}) {
      std::string package = Sign(Compose(contents), {.in_head = in_head, .key_name = "maker"});
      const UniquePackage verified = Open(package);
      const UniquePackage unverified(PackageReadFileCreateByFile(kTestPackage));
      ASSERT_EQ(JudgeOpen(verified), kGood);
      EXPECT_EQ(FileOf(verified, kDescriptionRow), contents.files[kDescriptionRow].data);
      EXPECT_EQ(FileOf(verified, kImageRow), contents.files[kImageRow].data);
      package[changed] = 'F';
      WriteFile(kTestPackage, package);  // in place: the same file
      EXPECT_EQ(FileOf(verified, kDescriptionRow), "");
      EXPECT_NE(FileOf(unverified, kDescriptionRow), "") << "readable, if nobody had asked for the signature";
    }
  }
  const UniquePackage early = Open(GoodPackage());
  early->head.files[kDescriptionRow].head_offset += 1;
  EXPECT_EQ(JudgeOpen(early), kUnreadable) << "the main head in use is the one that was signed";
}

}  // namespace
