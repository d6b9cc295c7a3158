#include "pkg/signature.h"

#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "pkg/contained_file.h"
#include "pkg/fingerprint_trailer.h"
#include "pkg/head_check.h"
#include "pkg/product_code.h"
#include "pkg/public_key.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/unique_handle.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDescriptionData = kMainHeadSize + 2 * kFileHeadSize + 13;

const char* const kKeyDirectory = kSignKeyDirectory;

std::string KeyPath(const std::string& name) { return std::string(kKeyDirectory) + "/" + name + ".key"; }

/// The description as an open package hands it out; empty when it does not.
std::string Description(PKG_READER_S* reader) {
  std::uint32_t size = 0;
  const UniqueText text(static_cast<char*>(GetFileFromReaderHeadByFileID(kDescriptionFile, reader, &size)));
  return text == nullptr ? "" : std::string(text.get(), size);
}

/// Whether the last file can be read, and is so long.
bool ReadsWhole(PKG_READER_S* reader, std::size_t length) {
  std::uint32_t size = 0;
  const UniqueText data(static_cast<char*>(
      GetFileFromReadHeadByFileDesc(&reader->head.files[reader->head.file_count - 1], reader, 0, &size, nullptr)));
  return data != nullptr && size == length;
}

/// A key file of these numbers, given as the tail of their 256 bytes.
std::string KeyOf(std::size_t header, std::string modulus, std::string exponent) {
  modulus.insert(0, kKeyNumberSize - modulus.size(), '\0');
  exponent.insert(0, kKeyNumberSize - exponent.size(), '\0');
  return std::string(header, '\x7F') + modulus + exponent;
}

using SignatureTest = PackageTest;

TEST_F(SignatureTest, AcceptsEveryFormOfAGenuinePackage) {
  const struct {
    mkpkg::SignatureForm form;
    PackageVerdict verdict;
  } cases[] = {
      {{.key_name = "maker"}, PackageVerdict::kGood},
      {{.key_name = "maker", .vendor_markers = true}, PackageVerdict::kGood},
      {{.key_name = "prefixed"}, PackageVerdict::kGood},
      {{.key_name = "prefixed", .digest_info = true}, PackageVerdict::kGood},
      {{.key_name = "maker", .digest_info = true}, PackageVerdict::kWrongSignature},
      {{.in_head = true, .key_name = ""}, PackageVerdict::kGood},
      {{.in_head = true, .key_name = "", .digest_info = true}, PackageVerdict::kWrongSignature},
      {{.key_name = "absent"}, PackageVerdict::kKeyFile},
  };
  for (const bool host_order : {false, true}) {
    mkpkg::PackageContents contents = Contents();
    contents.host_order = host_order;
    for (const auto& c : cases) {
      const std::string package = Sign(Compose(contents), c.form);
      const UniquePackage reader = Open(package);
      ASSERT_NE(reader, nullptr);
      EXPECT_EQ(JudgeSignature(reader.get(), kKeyDirectory), c.verdict) << c.form.key_name << host_order;
      EXPECT_EQ(PKG_IsOnePkgAuthOK(kTestPackage), c.verdict == PackageVerdict::kGood ? 1U : 0U);
      EXPECT_EQ(PKG_GetSignFormat(kTestPackage), c.form.in_head ? 0U : 1U);
      EXPECT_EQ(Description(reader.get()), contents.files[1].data) << "sealed or not, the file did not change";
    }
  }
  EXPECT_EQ(PKG_IsOnePkgAuthOK(""), 0U);
  EXPECT_EQ(PKG_GetSignFormat("/mnt/flash:/none.bin"), 2U);
}

TEST_F(SignatureTest, NoSingleByteCanBeChanged) {
  const std::size_t descriptors = OpenDescriptors();
  for (const bool in_head : {false, true}) {
    const std::string good = Sign(Compose(Contents()), {.in_head = in_head, .key_name = "maker"});
    ASSERT_EQ(Judge(good), PackageVerdict::kGood);
    // 0x20 changes the case of letters and makes other digits. In the head's long zeroes one byte in eight must do.
    for (std::size_t i = 0; i<good.size(); i += i> 300 && i + 8 < kMainHeadSize ? 7 : 1) {
      std::string damaged = good;
      damaged[i] = static_cast<char>(damaged[i] ^ 0x20);
      EXPECT_NE(Judge(damaged), PackageVerdict::kGood) << "byte " << i;
    }
  }
  EXPECT_EQ(OpenDescriptors(), descriptors);
}

TEST_F(SignatureTest, TrailerTellsALengthThatTheFileHas) {
  // The trailer starts within the main head: what is signed would be less than a head.
  std::string package = GoodPackage();
  const std::string whole = std::to_string(package.size());
  const std::size_t length_line = package.rfind("Length: ") + 8;
  for (const std::string& length : {"000" + std::to_string(kMainHeadSize), "00" + whole, std::string("000000")}) {
    package.replace(length_line, 6, length.substr(length.size() - 6));
    EXPECT_EQ(Judge(package), PackageVerdict::kTrailerLength) << length;
  }
  package.replace(length_line, 6, "000100");
  EXPECT_EQ(Judge(package), PackageVerdict::kTrailerForm);
  package = GoodPackage();
  package[package.find("Key: ") + 2] = '\0';
  EXPECT_EQ(Judge(package), PackageVerdict::kTrailerHoldsNul);
  mkpkg::PutWord(package, offsetof(PackageMainHead, minimum_payload), 0xFFFFFFFF);
  mkpkg::RenewHeadCrc(package);
  EXPECT_EQ(Judge(package), PackageVerdict::kShorterThanPayload);
  std::string long_signature = Sign(Compose(Contents()), {.in_head = true, .key_name = ""});
  mkpkg::PutWord(long_signature, offsetof(PackageMainHead, signature_length), kHeadSignatureRoom + 1);
  mkpkg::RenewHeadCrc(long_signature);
  EXPECT_EQ(Judge(long_signature), PackageVerdict::kSignatureLength);
}

TEST_F(SignatureTest, KeyWithWhichAnybodyCanSignIsRefused) {
  const std::string maker = ReadFile(KeyPath("maker"));
  const std::string modulus = maker.substr(2, kKeyNumberSize);
  std::string even = modulus;
  even.back() = static_cast<char>(even.back() ^ 1);
  const std::string f4("\1\0\1", 3);
  const struct {
    const char* what;
    std::string file;
    PackageVerdict verdict;
  } cases[] = {
      {"as made", maker, PackageVerdict::kGood},
      {"exponent 3, the digest alone", KeyOf(2, modulus, "\3"), PackageVerdict::kGood},
      {"exponent 3, the digest at the end", KeyOf(4, modulus, "\3"), PackageVerdict::kKeyValue},
      {"exponent 65535, likewise", KeyOf(4, modulus, "\xFF\xFF"), PackageVerdict::kKeyValue},
      {"exponent 65537, likewise", KeyOf(4, modulus, f4), PackageVerdict::kGood},
      {"exponent 1", KeyOf(2, modulus, "\1"), PackageVerdict::kKeyValue},
      {"exponent 0", KeyOf(2, modulus, ""), PackageVerdict::kKeyValue},
      {"exponent even", KeyOf(2, modulus, "\2"), PackageVerdict::kKeyValue},
      {"modulus 0", KeyOf(2, "", f4), PackageVerdict::kKeyValue},
      {"modulus 1", KeyOf(2, "\1", f4), PackageVerdict::kKeyValue},
      {"modulus even", KeyOf(2, even, f4), PackageVerdict::kKeyValue},
      {"513 bytes", maker.substr(1), PackageVerdict::kKeyFile},
      {"515 bytes", maker + "x", PackageVerdict::kKeyFile},
      {"517 bytes", maker + "xyz", PackageVerdict::kKeyFile},
      {"empty", "", PackageVerdict::kKeyFile},
  };
  for (const auto& c : cases) {
    WriteFile(KeyPath("k"), c.file);
    PublicKey key;
    EXPECT_EQ(ReadPublicKey(kKeyDirectory, "k", key), c.verdict) << c.what;
  }
  mkpkg::UniqueKey other;
  std::string other_file;
  ASSERT_EQ(mkpkg::GenerateKey(mkpkg::kLeastExponent, other), "");
  ASSERT_EQ(mkpkg::EncodeDeviceKey(other, mkpkg::kShortKeyFile, other_file), "");
  WriteFile(KeyPath("maker"), other_file);
  EXPECT_EQ(Judge(GoodPackage()), PackageVerdict::kWrongSignature);
}

TEST_F(SignatureTest, PathMustNameTheOpenFile) {
  const UniquePackage reader = Open(GoodPackage());
  fs::rename(kTestPackage, "/mnt/flash:/aside.bin");
  EXPECT_EQ(JudgePackage(reader.get(), kTestProductTag, kKeyDirectory), PackageVerdict::kReplaced);
  WriteFile(kTestPackage, GoodPackage());
  EXPECT_EQ(JudgePackage(reader.get(), kTestProductTag, kKeyDirectory), PackageVerdict::kReplaced);
  fs::remove(kTestPackage);
  fs::create_symlink("/mnt/flash:/aside.bin", kTestPackage);
  EXPECT_EQ(JudgePackage(reader.get(), kTestProductTag, kKeyDirectory), PackageVerdict::kLink);
  EXPECT_EQ(PKG_IsOnePkgAuthOK(kTestPackage), 0U);
  EXPECT_EQ(JudgePackage(Open(Sign(Compose(Contents()), {.in_head = true, .key_name = ""})).get(), kTestProductTag,
                         kKeyDirectory),
            PackageVerdict::kLink);
}

TEST_F(SignatureTest, VerifiedPackageHandsOutOnlyWhatWasVerified) {
  mkpkg::PackageContents contents = Contents();
  contents.files[3].data.resize(100000);  // so that no stream still holds the description when it is asked for
  for (const bool in_head : {false, true}) {
    for (const std::size_t changed : {kDescriptionData, kDescriptionData - kFileHeadSize + 50}) {
      std::string package = Sign(Compose(contents), {.in_head = in_head, .key_name = "maker"});
      const UniquePackage verified = Open(package);
      const UniquePackage unverified(PackageReadFileCreateByFile(kTestPackage));
      ASSERT_EQ(JudgePackage(verified.get(), kTestProductTag, kKeyDirectory), PackageVerdict::kGood);
      EXPECT_EQ(Description(verified.get()), contents.files[1].data);
      EXPECT_TRUE(ReadsWhole(verified.get(), contents.files[3].data.size()));
      package[changed] = 'F';
      WriteFile(kTestPackage, package);  // in place: the same file
      EXPECT_EQ(Description(verified.get()), "");
      EXPECT_NE(Description(unverified.get()), "") << "readable, if nobody had asked for the signature";
    }
  }
  // The main head that the reader took must be the one that was signed.
  std::string package = GoodPackage();
  const UniquePackage early = Open(package);
  early->head.files[1].head_offset += 1;
  EXPECT_EQ(JudgeSignature(early.get(), kKeyDirectory), PackageVerdict::kUnreadable);
}

TEST_F(SignatureTest, UnsignedBytesAreNoContainedFile) {
  // In the head form the head is not signed: a forger can hide a file in its reserved words and add a row for it.
  std::string package = Sign(Compose(Contents()), {.in_head = true, .key_name = ""});
  const std::string planted = package.substr(kMainHeadSize + kFileHeadSize + 13, 2 * kFileHeadSize);
  const std::size_t row = offsetof(PackageMainHead, files) + sizeof(PackageFileEntry);
  package.replace(offsetof(PackageMainHead, reserved), planted.size(), planted);
  mkpkg::PutWord(package, row + offsetof(PackageFileEntry, head_offset), offsetof(PackageMainHead, reserved));
  mkpkg::RenewHeadCrc(package);
  const UniquePackage reader = Open(package);
  EXPECT_EQ(Description(reader.get()), Contents().files[1].data);
  EXPECT_EQ(JudgePackage(reader.get(), kTestProductTag, kKeyDirectory), PackageVerdict::kGood);
  EXPECT_EQ(Description(reader.get()), "");
}

TEST_F(SignatureTest, SignatureOfATrailerIsNoneInTheHead) {
  // One key serves both forms: behind a head of the forger's own, another product's package would fit.
  for (const bool host_order : {false, true}) {
    mkpkg::PackageContents contents = Contents();
    contents.product_tag = kTestProductTag + 1;
    contents.host_order = host_order;
    const std::string foreign = Sign(Compose(contents), {.key_name = "maker"});
    EXPECT_EQ(Judge(foreign), PackageVerdict::kProductTag);
    const std::string signed_part = foreign.substr(0, foreign.rfind("--=</Begin"));
    std::uint8_t signature[kHeadSignatureRoom] = {};
    std::uint32_t length = 0;
    ASSERT_EQ(PKG_GetCSS_Signture(foreign.c_str() + signed_part.size(), signature, &length), 0U);
    std::string package = Sign(Compose(Contents()), {.in_head = true, .key_name = ""}).substr(0, kMainHeadSize);
    package.replace(offsetof(PackageMainHead, signature), length, reinterpret_cast<char*>(signature), length);
    mkpkg::RenewHeadCrc(package);
    EXPECT_EQ(Judge(package + signed_part), PackageVerdict::kWrongSignature);
  }
}

}  // namespace
