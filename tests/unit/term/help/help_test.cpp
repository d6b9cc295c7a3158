#include "term/help/help.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "term/help/help_list.h"
#include "tests/support/scripted_stdio.h"

namespace {

using Lines = std::vector<std::pair<std::string, std::string>>;

std::string Print(const Lines& lines, std::uint16_t whole) {
  const UniqueHelpList list(VEC_Alloc(kUsualSlots));
  for (const auto& [keyword, help] : lines) ESH_NewHelpInfo(keyword.c_str(), help.c_str(), list.get());
  ScriptedStdio stdio;
  PrintHelpVec(list.get(), whole);
  return stdio.TakeOutput();
}

std::string Many(std::size_t count, char character) { return std::string(count, character); }

TEST(WholeHelp, IsLaidOutInTwoColumns) {
  const std::tuple<const char*, Lines, std::string> kLayouts[] = {
      {"cut behind a blank",
       {{"k", Many(70, 'a') + "  " + Many(9, 'b')}},
       "  k  " + Many(70, 'a') + "  \r\n     " + Many(9, 'b') + "\r\n"},
      {"a blank behind its room",
       {{"k", "aa " + Many(72, 'b') + "  cc " + Many(72, 'd')}},
       "  k  aa " + Many(72, 'b') + "\r\n     cc " + Many(72, 'd') + "\r\n"},
      {"one letter more than its room", {{"k", "aa " + Many(73, 'b')}}, "  k  aa \r\n     " + Many(73, 'b') + "\r\n"},
      {"a word wider than its room",
       {{"k", Many(100, 'a') + " b"}},
       "  k  " + Many(75, 'a') + "\r\n     " + Many(25, 'a') + " b\r\n"},
      // At the screen's edge the arithmetic wraps round.
      {"up to two columns before the edge",
       {{Many(75, 'k'), "abcd"}},
       "  " + Many(75, 'k') + "  a\r\n" + Many(79, ' ') + "b\r\n" + Many(79, ' ') + "c\r\n" + Many(79, ' ') + "d\r\n"},
      {"up to the edge but two",
       {{"ab", "c"}, {Many(76, 'k'), "d"}},
       "  ab  c\r\n  " + Many(76, 'k') + Many(8, ' ') + "d\r\n"},
      {"up to the edge", {{Many(78, 'k'), "d"}}, "  " + Many(78, 'k') + "    d\r\n"},
      {"over the edge", {{Many(79, 'k'), "d"}}, "  " + Many(79, 'k') + "  d\r\n"},
  };
  for (const auto& [why, lines, output] : kLayouts) EXPECT_EQ(Print(lines, 1), output + "\r\n") << why;
  EXPECT_EQ(Print({}, 1), "");
}

TEST(NamesOnly, AreNumbersThenTextsThenTheEndEachOnce) {
  // As the screen shall show them.
  constexpr const char* kOrder[] = {"0007", "9",     "10", "09a", "0x", "10a",  "5 blind",
                                    "9a",   "Zebra", "a",  "aa",  "zz", "\xFF", "<cr>"};
  Lines lines;
  std::string expected;
  for (const char* keyword : kOrder) {
    for (int twice = 0; twice < 2; ++twice) lines.emplace(twice == 0 ? lines.begin() : lines.end(), keyword, "");
    expected += "  " + std::string(keyword) + "\r\n";
  }
  EXPECT_EQ(Print(lines, 0), expected + "\r\n");
  EXPECT_EQ(Print({{"0001", ""}, {"001", ""}, {"01", ""}}, 0), "  01\r\n  001\r\n  0001\r\n\r\n") << "equal numbers";
  EXPECT_EQ(Print({{Many(513, 'z'), ""}}, 0), "  " + Many(512, 'z') + "\r\n\r\n") << "as long as it gets";
}

}  // namespace
