#include <cstring>
#include <string>
#include <vector>

#include "pkg/base64.h"
#include "pkg/crc16.h"
#include "pkg/fingerprint_trailer.h"
#include "pkg/line_reader.h"
#include "pkg/package_format.h"
#include "pkg/product_code.h"
#include "tests/support/private_root.h"
#include "tools/mkpkg/package_signer.h"

namespace {

using namespace std::literals;

TEST(LineReader, EndsLinesAtLfCrAndBothTogether) {
  const struct {
    std::string text;
    std::vector<std::string> lines;
  } cases[] = {
      {"", {}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\r\nb\rc\nd", {"a", "b", "c", "d"}},
      {"\n\r\r\n\n", {"", "", "", ""}},
      {" a \r", {" a "}},
      {"a\0b\nc"s, {"a", "c"}},  // a line is a C string
  };
  for (const auto& c : cases) {
    // Exactly as long as the text, so that reading past its end is seen.
    const std::vector<char> exact(c.text.begin(), c.text.end());
    const UniqueLines reader(ReadBuffCreateByMem(exact.empty() ? "" : exact.data(), exact.size()));
    ASSERT_NE(reader, nullptr);
    std::vector<std::string> lines;
    while (const char* line = ReadBuffGets(reader.get())) {
      lines.emplace_back(line);
    }
    EXPECT_EQ(lines, c.lines) << c.text;
    EXPECT_EQ(ReadBuffGets(reader.get()), nullptr);
  }
  EXPECT_EQ(ReadBuffCreateByMem(nullptr, 0), nullptr);
}

TEST(Crc16, IsXmodem) {
  std::uint16_t crc = 0;
  for (const char c : "123456789"sv) {
    crc = AddToCrc16(crc, static_cast<std::uint8_t>(c));
  }
  EXPECT_EQ(crc, 0x31C3);  // the check value of the published CRC catalogue
}

TEST(Base64, HasOneFormOnly) {
  const struct {
    const char* text;
    int length;  // -1: refused
  } cases[] = {
      {"", 0},
      {"TWFu", 3},
      {"TWE=", 2},
      {"TQ==", 1},
      {"TWFuTWFu", 6},
      {"+/+/", 3},
      {"T===", -1},
      {"====", -1},
      {"TQ==TWFu", -1},
      {"TW=u", -1},
      {"TWF", -1},
      {"TWFuT", -1},
      {"TW u", -1},
      {" TWF", -1},
      {"TWF\n", -1},
      {"TWF-", -1},
      {"TWF_", -1},
      {"TW\tF", -1},
      {"TWFuTWFuTWFuTWFu", -1 /* no room */},
  };
  for (const auto& c : cases) {
    std::uint8_t out[9];
    const auto length = DecodeBase64(c.text, out);
    EXPECT_EQ(length ? static_cast<int>(*length) : -1, c.length) << c.text;
    EXPECT_TRUE(c.length != 3 || c.text[0] == '+' || std::memcmp(out, "Man", 3) == 0);
  }
}

TEST(Trailer, SignatureHasARoomThatIsKeptTo) {
  const auto length_of = [](std::size_t digits) {
    const std::string trailer = mkpkg::Trailer({.key_name = "k"}, std::string(digits / 4 * 3, '\0'));
    std::uint8_t signature[kHeadSignatureRoom];
    std::uint32_t length = 0;
    return PKG_GetCSS_Signture(trailer.c_str(), signature, &length) == 0 ? length : 0;
  };
  EXPECT_EQ(length_of(kMostSignatureText), 1536U);
  EXPECT_EQ(length_of(kMostSignatureText + 4), 0U);
}

struct VersionFileTest : PrivateRootTest {};

TEST_F(VersionFileTest, TellsATagOnItsFirstLineOnly) {
  const struct {
    const char* text;
    std::uint32_t tag;
  } cases[] = {
      {"ProductTag : 0x12ab\n", 0x12AB},
      {"Name : x\nProductTag:0xFFFFFFFE", 0xFFFFFFFE},
      {"ProductTag  :\t0x1\nProductTag : 0x2\n", 1},
      {"# ProductTag follows\nProductTag : 0x2\n", kUnknownTag},
      {"PRODUCTTAG : 0x1\nProductTag : 0x2\n", kUnknownTag},  // found in any case, read in one
      {"ProductTag : 12\n", kUnknownTag},
      {"ProductTag : 0x\n", kUnknownTag},
      {"ProductTag : 0x-1\n", kUnknownTag},
      {"ProductTag : 0x100000001\n", kUnknownTag},
      {"DeviceTag : 0x3\n", kUnknownTag},
      {"", kUnknownTag},
  };
  for (const auto& c : cases) {
    WriteFile("/etc/version", c.text);
    EXPECT_EQ(ReadVersionTag("/etc/version", kProductTagName), c.tag) << c.text;
  }
  // A tag that is not known yet is looked for again.
  EXPECT_EQ(DeviceCode(), kUnknownTag);
  WriteFile(kVersionFile, "DeviceTag : 0x3\n");
  EXPECT_EQ(DeviceCode(), 3U);
  WriteFile(kVersionFile, "DeviceTag : 0x4\n");
  EXPECT_EQ(DeviceCode(), 3U);
}

}  // namespace
