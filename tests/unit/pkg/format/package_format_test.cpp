#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "pkg/format/base64.h"
#include "pkg/format/contained_file.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/head_check.h"
#include "pkg/format/line_reader.h"
#include "pkg/format/package_digest.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/product_code.h"
#include "pkg/format/public_key.h"
#include "pkg/format/signature.h"
#include "tests/support/package_fixture.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

namespace fs = std::filesystem;
using enum PackageVerdict;

constexpr std::size_t kDescriptionRow = 1;  // of PackageTest::Contents()
constexpr std::size_t kImageRow = 3;
constexpr std::size_t kDescriptionHead = kMainHeadSize + kFileHeadSize + 13;

using SignatureTest = PackageTest;

UniquePackage Open(const std::string& package) {
  WriteFile(kTestPackage, package);
  return UniquePackage(PackageReadFileCreateByFile(kTestPackage));
}

/// What an open package hands out of the file in a row of its table; empty for nothing.
std::string FileOf(const UniquePackage& reader, std::size_t row) {
  std::uint32_t size = 0;
  const UniqueText data(
      static_cast<char*>(GetFileFromReadHeadByFileDesc(&reader->head.files[row], reader.get(), 0, &size, nullptr)));
  EXPECT_EQ(data == nullptr, size == 0);
  return data == nullptr ? "" : std::string(data.get(), size);
}

PackageVerdict JudgeOpen(const UniquePackage& reader) {
  return JudgePackage(reader.get(), kTestProductTag, kSignKeyDirectory);
}

TEST_F(SignatureTest, FunctionsTellByTheirResultWhatAFileIs) {
  PKG_CSS_S css = {};
  const auto told = [&css](const char* path) {
    return std::tuple(PKG_IsOnePkgAuthOK(path), PKG_GetSignFormat(path), PKG_GetFileSizeByUserPath(path),
                      PKG_CreateCSS(path, &css));
  };
  EXPECT_EQ(told("/gone"), std::tuple(0U, 2U, 0U, kErrPackageOpen));
  const UniquePackage reader = Open(GoodPackage(true));
  EXPECT_EQ(told(kTestPackage), std::tuple(1U, 0U, fs::file_size(kTestPackage), ESH_ERR_FAIL));
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kSuccess);
  EXPECT_EQ(MainHeadCheck(1, reader.get()), kErrPackageKind);
  reader->head.file_count = kMaxPackageFiles + 1;
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kErrPackageMismatch);
  reader->head.crc ^= 1;
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kErrPackageCrc);
  reader->head.product_tag = kUnknownTag;
  EXPECT_EQ(JudgeMainHead(0, reader.get(), kUnknownTag), kProductTag) << "a device that does not know its product";
  std::uint8_t bytes[kHeadSignatureRoom];
  std::uint32_t length = 0;
  EXPECT_EQ(PKG_GetDigestFromPkg(reader->source.stream, 1, kMainHeadSize, bytes, &length), kSuccess);
  EXPECT_EQ(PKG_GetDigestFromPkg(reader->source.stream, 1, 1 << 20, bytes, &length), ESH_ERR_FAIL);
  WriteFile(kTestPackage, GoodPackage());
  EXPECT_EQ(told(kTestPackage), std::tuple(1U, 1U, fs::file_size(kTestPackage), kSuccess));
  EXPECT_EQ(PKG_CSSCheck_IsFixFormat(css.text), 1U);
  EXPECT_EQ(PKG_CSSCheck_IsFixFormat(css.text + 1), 0U);
  EXPECT_EQ(PKG_GetCSS_Signture(css.text, bytes, &length), kSuccess);
  EXPECT_EQ(length, kKeyNumberSize);
  for (const char* text : {"", "Signature: AAAA\n", "Signature: AAAAAFingerprint Length: "})
    EXPECT_EQ(PKG_GetCSS_Signture(text, bytes, &length), ESH_ERR_FAIL) << text;
  CssFreer()(&css);
}

TEST_F(SignatureTest, KeyWithASmallExponentOrAnEvenModulusOrOfAnotherSizeIsRefused) {
  const std::string path = std::string(kSignKeyDirectory) + "/prefixed" + kKeySuffix;
  const std::string good = ReadFile(path);
  const auto verdict_with = [&](const std::string& key) {
    WriteFile(path, key);
    return JudgeOpen(Open(Sign(Compose(Contents()), {.key_name = "prefixed", .digest_info = true})));
  };
  for (const auto& [end, bytes] : {std::pair(3UL, std::string("\0\xFF\xFF", 3)), {kKeyNumberSize + 1, "\x02"}})
    EXPECT_EQ(verdict_with(std::string(good).replace(good.size() - end, bytes.size(), bytes)), kKeyValue);
  EXPECT_EQ(verdict_with(good.substr(1)), kKeyFile);
}

TEST_F(SignatureTest, PathMustNameTheOpenFile) {
  const UniquePackage reader = Open(GoodPackage());
  fs::rename(kTestPackage, "/mnt/flash:/aside.bin");
  EXPECT_EQ(JudgeOpen(reader), kReplaced);
  WriteFile(kTestPackage, GoodPackage());
  EXPECT_EQ(JudgeOpen(reader), kReplaced);
  EXPECT_EQ(CheckPackageHead(reader.get()), ESH_ERR_FAIL);
  fs::remove(kTestPackage);
  fs::create_symlink("/mnt/flash:/aside.bin", kTestPackage);
  EXPECT_EQ(JudgeOpen(reader), kLink);
  fs::remove(kTestPackage);
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

TEST(Base64, IsWrittenOnlyWhereThereIsRoomForAll) {
  std::uint8_t room[6] = {};
  EXPECT_EQ(DecodeBase64("MTIz", std::span(room).first(3)), 3U);
  EXPECT_FALSE(DecodeBase64("NDU2Nzg5", std::span(room).first(3)));
  EXPECT_EQ(std::string(std::begin(room), std::end(room)), std::string("123\0\0\0", 6));
}

TEST(LineReader, EndsLinesAtLfCrAndBothTogether) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},          {"a\r\nb\rc\nd", "a|b|c|d|"},        {"\n\r\r\n\n", "||||"},
      {" a \r", " a |"}, {std::string("a\0b\nc", 5), "a|c|"},  // a line is a C string
  };
  for (const auto& [text, lines] : cases) {
    // Exactly as long as the text, so that reading past its end is seen.
    const std::vector<char> exact(text.begin(), text.end());
    const UniqueLines reader(ReadBuffCreateByMem(exact.empty() ? "" : exact.data(), exact.size()));
    std::string found;
    while (const char* line = ReadBuffGets(reader.get())) found += std::string(line) + "|";
    EXPECT_EQ(found, lines) << text;
  }
}

using VersionTag = PackageTest;

TEST_F(VersionTag, DeviceReadsATagOnItsFirstLineOnly) {
  const auto tag_of = [](const std::string& line) {
    WriteFile("/etc/version", "Name : x\n" + line + "\nProductTag : 0x2\n");
    return ReadVersionTag("/etc/version", kProductTagName);
  };
  EXPECT_EQ(tag_of("DeviceTag : 0x3"), 2U);
  EXPECT_EQ(tag_of("ProductTag  :\t0x1"), 1U);
  EXPECT_EQ(tag_of("ProductTag:0xFFFFFFFE"), 0xFFFFFFFE);
  EXPECT_EQ(tag_of("ProductTag : 0x 12"), 0x12U);
  EXPECT_EQ(tag_of("ProductTag : 0x+5"), 5U);
  // It is found in any case and read in one.
  for (const char* line : {"# ProductTag follows", "PRODUCTTAG : 0x1", "ProductTag : 12", "ProductTag : 0x"})
    EXPECT_EQ(tag_of(line), kUnknownTag) << line;
}

}  // namespace
