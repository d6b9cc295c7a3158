#include "pkg/format/signature.h"

#include <filesystem>
#include <tuple>
#include <utility>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/head_check.h"
#include "pkg/format/public_key.h"
#include "tests/support/package_fixture.h"

namespace {

namespace fs = std::filesystem;
using enum PackageVerdict;

constexpr std::size_t kDescriptionRow = 1;  // of PackageTest::Contents()
constexpr std::size_t kImageRow = 3;
constexpr std::size_t kDescriptionHead = kMainHeadSize + kFileHeadSize + 13;
constexpr std::size_t kDescriptionData = kDescriptionHead + kFileHeadSize;

std::string KeyPath(const std::string& name) { return std::string(kSignKeyDirectory) + "/" + name + kKeySuffix; }

struct SignatureTest : PackageTest {
  static PackageVerdict JudgeOpen(const UniquePackage& reader) {
    return JudgePackage(reader.get(), kTestProductTag, kSignKeyDirectory);
  }
};

TEST_F(SignatureTest, HasTheFormThatItsKeyTakes) {
  const std::pair<mkpkg::SignatureForm, PackageVerdict> cases[] = {
      {{.key_name = "maker", .vendor_markers = true}, kGood},
      {{.key_name = "prefixed", .digest_info = true}, kGood},
      {{.key_name = "maker", .digest_info = true}, kWrongSignature},
  };
  for (const auto& [form, verdict] : cases) EXPECT_EQ(Judge(Sign(Compose(Contents()), form)), verdict) << form.key_name;
  EXPECT_EQ(PKG_GetSignFormat(kTestPackage), 1U);
}

TEST_F(SignatureTest, LengthsMustBeThoseOfTheFile) {
  const std::string good = GoodPackage();
  const auto with_length = [&](const char* digits) {
    return std::string(good).replace(good.rfind(kLengthLabel) + kLengthLabel.size(), 6, digits);
  };
  std::string with_nul = good;
  with_nul[good.find(kKeyLabel) + 2] = '\0';
  const std::pair<std::string, PackageVerdict> cases[] = {
      {with_length("006180"), kTrailerLength},  // what is signed would be less than a main head
      {with_length("000000"), kTrailerLength},
      {with_nul, kTrailerHoldsNul},
      {WithHeadWord(GoodPackage(true), offsetof(PackageMainHead, signature_length), 2049), kSignatureLength},
  };
  for (const auto& [package, verdict] : cases) EXPECT_EQ(Judge(package), verdict);
}

TEST_F(SignatureTest, KeyWithWhichAnybodyCanSignIsRefused) {
  const auto key_of = [](std::size_t header, const std::string& modulus, const std::string& exponent) {
    return std::string(header, '\x7F') + modulus + std::string(kKeyNumberSize - exponent.size(), '\0') + exponent;
  };
  const std::string maker = ReadFile(KeyPath("maker"));
  const std::string modulus = maker.substr(2, kKeyNumberSize);
  std::string even = modulus;
  even.back() = static_cast<char>(even.back() ^ 1);
  const std::string f4("\1\0\1", 3);
  const std::tuple<const char*, std::string, PackageVerdict> cases[] = {
      {"exponent 65535", key_of(4, modulus, "\xFF\xFF"), kKeyValue},
      {"exponent 65537", key_of(4, modulus, f4), kGood},
      {"exponent 1", key_of(2, modulus, "\1"), kKeyValue},
      {"modulus even", key_of(2, even, f4), kKeyValue},
      {"515 bytes", maker + "x", kKeyFile},
  };
  for (const auto& [what, file, verdict] : cases) {
    WriteFile(KeyPath("k"), file);
    PublicKey key;
    EXPECT_EQ(ReadPublicKey(kSignKeyDirectory, "k", key), verdict) << what;
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
}

TEST_F(SignatureTest, VerifiedPackageHandsOutOnlyWhatWasVerified) {
  mkpkg::PackageContents contents = Contents();
  contents.files[kImageRow].data.resize(100000);  // so that no stream still holds the description when it is asked for
  for (const bool in_head : {false, true}) {
    for (const std::size_t changed : {kDescriptionData, kDescriptionHead + 50}) {
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

TEST_F(SignatureTest, UnsignedBytesAreNoContainedFile) {
  // In the head form the head is not signed: a forger can hide a file in its reserved words and add a row for it.
  constexpr std::size_t kReserved = offsetof(PackageMainHead, reserved);
  constexpr std::size_t kRow = offsetof(PackageMainHead, files) + kDescriptionRow * sizeof(PackageFileEntry);
  std::string package = GoodPackage(true);
  package.replace(kReserved, 2 * kFileHeadSize, package.substr(kDescriptionHead, 2 * kFileHeadSize));
  const UniquePackage reader = Open(WithHeadWord(package, kRow + offsetof(PackageFileEntry, head_offset), kReserved));
  EXPECT_EQ(FileOf(reader, kDescriptionRow), Contents().files[kDescriptionRow].data);
  EXPECT_EQ(JudgeOpen(reader), kGood);
  EXPECT_EQ(FileOf(reader, kDescriptionRow), "");
}

}  // namespace
