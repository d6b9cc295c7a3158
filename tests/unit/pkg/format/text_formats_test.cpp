#include <string>
#include <utility>
#include <vector>

#include "pkg/format/line_reader.h"
#include "pkg/format/product_code.h"
#include "tests/support/private_root.h"

namespace {

using namespace std::literals;

TEST(LineReader, EndsLinesAtLfCrAndBothTogether) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},          {"a", "a|"},          {"a\n", "a|"}, {"a\r\nb\rc\nd", "a|b|c|d|"}, {"\n\r\r\n\n", "||||"},
      {" a \r", " a |"}, {"a\0b\nc"s, "a|c|"},  // a line is a C string
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

using VersionFileTest = PrivateRootTest;

TEST_F(VersionFileTest, TellsATagOnItsFirstLineOnly) {
  constexpr std::pair<const char*, std::uint32_t> kCases[] = {
      {"Name : x\nProductTag:0xFFFFFFFE", 0xFFFFFFFE},
      {"ProductTag  :\t0x1\nProductTag : 0x2\n", 1},
      {"# ProductTag follows\nProductTag : 0x2\n", kUnknownTag},
      {"PRODUCTTAG : 0x1\nProductTag : 0x2\n", kUnknownTag},  // found in any case, read in one
      {"ProductTag : 12\n", kUnknownTag},
      {"ProductTag : 0x\n", kUnknownTag},
      {"ProductTag : 0x 12\n", 0x12},
      {"ProductTag : 0x+5\n", 5},
      {"DeviceTag : 0x3\n", kUnknownTag},
  };
  for (const auto& [text, tag] : kCases) {
    WriteFile("/etc/version", text);
    EXPECT_EQ(ReadVersionTag("/etc/version", kProductTagName), tag) << text;
  }
}

}  // namespace
