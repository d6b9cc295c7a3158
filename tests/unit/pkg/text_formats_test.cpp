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

/// A trailer with the length that it has; `middle` stands between the two length lines.
std::string TrailerAround(const std::string& middle, const TrailerMarkers& begin, const TrailerMarkers& end) {
  const std::size_t length = begin.begin.size() + 2 * 27 + middle.size() + end.end.size();
  const std::string digits = std::to_string(length);
  const std::string line = "Fingerprint Length: " + std::string(6 - digits.size(), '0') + digits + "\n";
  return std::string(begin.begin) + line + middle + line + std::string(end.end);
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  return text.replace(text.find(what), what.size(), by);
}

TEST(Trailer, HasExactlyItsSevenLines) {
  const std::string middle = "Key: k\nHash: sha256\nSignature: TWFu\n";
  const std::string good = TrailerAround(middle, kGenericMarkers, kGenericMarkers);
  const std::string begin(kGenericMarkers.begin);
  const std::string end(kGenericMarkers.end);
  const auto around = [](const std::string& text) { return TrailerAround(text, kGenericMarkers, kGenericMarkers); };
  const struct {
    const char* what;
    std::string text;
    bool good;
  } cases[] = {
      {"generic", good, true},
      {"vendor", TrailerAround(middle, kVendorMarkers, kVendorMarkers), true},
      {"begin generic, end vendor", TrailerAround(middle, kGenericMarkers, kVendorMarkers), false},
      {"begin vendor, end generic", TrailerAround(middle, kVendorMarkers, kGenericMarkers), false},
      {"two begin markers", around(begin + middle), false},
      {"two end markers", around(middle + end), false},
      {"text after the end", good + "\n", false},
      {"text before the begin", "\n" + good, false},
      {"no line end at the end", good.substr(0, good.size() - 1), false},
      {"CR LF", Replaced(good, "Key: k\n", "Key: k\r\n"), false},
      {"another line", around("Note: x\n" + middle), false},
      {"a line less", around("Key: k\nHash: sha256\n"), false},
      {"lines in another order", around("Hash: sha256\nKey: k\nSignature: TWFu\n"), false},
      {"SHA256", around("Key: k\nHash: SHA256\nSignature: TWFu\n"), false},
      {"sha1", around("Key: k\nHash: sha1\nSignature: TWFu\n"), false},
      {"sha256 and more", around("Key: k\nHash: sha2567\nSignature: TWFu\n"), false},
      {"no key", around("Key: \nHash: sha256\nSignature: TWFu\n"), false},
      {"a blank in the key", around("Key: k k\nHash: sha256\nSignature: TWFu\n"), false},
      {"no signature", around("Key: k\nHash: sha256\nSignature: \n"), false},
      {"five digits", Replaced(good, "Length: 000", "Length: 00"), false},
      {"seven digits", Replaced(good, "Length: 000", "Length: 0000"), false},
      {"a sign among the digits", Replaced(good, "Length: 000", "Length: +00"), false},
      {"another length first", Replaced(good, "Length: 0001", "Length: 0002"), false},
      {"a length that is not its own", around(middle).insert(begin.size() + 27 + 5, "k"), false},
      {"nothing", "", false},
      {"one marker for both", end, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(PKG_CSSCheck_IsFixFormat(c.text.c_str()), c.good ? 1U : 0U) << c.what;
    std::uint8_t signature[kHeadSignatureRoom];
    std::uint32_t length = 0;
    EXPECT_EQ(PKG_GetCSS_Signture(c.text.c_str(), signature, &length) == 0, c.good) << c.what;
  }
  const auto with_signature = [&](std::size_t size) {
    std::uint8_t signature[kHeadSignatureRoom];
    std::uint32_t length = 0;
    const std::string text = around("Key: k\nHash: sha256\nSignature: " + std::string(size, 'A') + "\n");
    return PKG_GetCSS_Signture(text.c_str(), signature, &length) == 0 ? length : 0;
  };
  EXPECT_EQ(with_signature(kMostSignatureText), 1536U);
  EXPECT_EQ(with_signature(kMostSignatureText + 4), 0U);
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
