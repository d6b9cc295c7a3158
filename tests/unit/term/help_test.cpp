#include "term/help.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "shell/command_tree.h"
#include "shell/words.h"
#include "term/help_list.h"
#include "tests/support/scripted_stdio.h"
#include "tests/support/test_view.h"

namespace {

using HelpLine = std::pair<std::string, std::string>;

UniqueHelpList MakeList(const std::vector<HelpLine>& lines) {
  UniqueHelpList list(VEC_Alloc(8));
  for (const auto& [keyword, help] : lines) {
    ESH_NewHelpInfo(keyword.c_str(), help.c_str(), list.get());
  }
  return list;
}

std::string Print(const std::vector<HelpLine>& lines, std::uint16_t whole) {
  const UniqueHelpList list = MakeList(lines);
  ScriptedStdio stdio;
  PrintHelpVec(list.get(), whole);
  return stdio.TakeOutput();
}

void SkipBlanks(std::string& text) { text.erase(0, std::min(text.find_first_not_of(' '), text.size())); }

/// The two columns as their rules put them, letter by letter. The lines are sorted.
std::string Layout(const std::vector<HelpLine>& lines) {
  std::size_t widest = 0;
  for (const auto& [keyword, help] : lines) {
    const std::size_t m = (keyword.size() + 2) % 80;
    widest = std::max(widest, m == 78 || m == 0 ? 2 : m == 79 ? 1 : m);
  }
  const std::size_t column = widest + 2;
  const std::size_t room = 80 - column;
  std::string text;
  for (const auto& [keyword, help] : lines) {
    const std::size_t m = (keyword.size() + 2) % 80;
    text += "  " + keyword + std::string(m >= 78 ? widest + 4 - (m + 2) % 80 : column - m, ' ');
    std::string rest = help;
    SkipBlanks(rest);
    while (rest.size() > room) {
      std::size_t cut = room;
      while (rest[room] != ' ' && cut > 0 && rest[cut - 1] != ' ') {
        --cut;
      }
      cut = cut == 0 ? room : cut;
      text += rest.substr(0, cut) + "\r\n" + std::string(column, ' ');
      rest.erase(0, cut);
      SkipBlanks(rest);
    }
    text += rest + "\r\n";
  }
  return text;
}

/// Descriptions of words of all lengths, with blanks where one would not expect them.
std::string RandomHelp(std::mt19937& random) {
  std::string help;
  for (auto words = random() % 30; words > 0 && help.size() < 380; --words) {
    help += std::string(random() % (random() % 8 == 0 ? 90 : 12), 'w') + std::string(random() % 10 == 0 ? 3 : 1, ' ');
  }
  help.resize(help.size() - (help.empty() ? 0 : random() % 2));
  return help;
}

TEST(WholeHelp, IsLaidOutInTwoColumns) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    std::vector<HelpLine> lines;
    const std::size_t longest = seed % 10 == 0 ? 100 : 1 + seed % 74;
    for (unsigned i = 0; i <= seed % 40; ++i) {
      // The first letters make the order plain.
      const std::string keyword{static_cast<char>('A' + i / 8), static_cast<char>('a' + i % 8)};
      lines.emplace_back(keyword + std::string(random() % longest, 'k'), RandomHelp(random));
    }
    const std::string expected = Layout(lines) + "\r\n";
    std::shuffle(lines.begin(), lines.end(), random);
    ASSERT_EQ(Print(lines, 1), expected) << "seed " << seed;
  }
}

TEST(WholeHelp, LooksLikeThis) {
  const std::string description(60, 'd');
  EXPECT_EQ(Print({{"<cr>", " "}, {"display", "Show " + description + " state"}, {"copy", "Copy a file"}}, 1),
            "  copy     Copy a file\r\n"
            "  display  Show " +
                description +
                " \r\n"
                "           state\r\n"
                "  <cr>     \r\n"
                "\r\n");
}

TEST(WholeHelp, FillsItsBufferToTheLastByte) {
  for (const int over : {0, 1}) {
    // 51 lines of 79 bytes, and one that makes it 4087 or one more.
    std::vector<HelpLine> lines(51);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      lines[i] = {"k" + std::to_string(100 + i), std::string(69, 'x')};
    }
    const std::size_t full = Layout(lines).size();
    lines.emplace_back("k999", std::string(4087 - full - 10 + static_cast<std::size_t>(over), 'z'));
    const std::string expected = Layout(lines);
    ASSERT_EQ(expected.size(), 4087U + static_cast<std::size_t>(over));
    const UniqueHelpList list = MakeList(lines);
    char buffer[kHelpOutputRoom];
    ScriptedStdio stdio;
    PrintWholeHelp(list.get(), buffer);
    const std::string printed = stdio.TakeOutput();
    EXPECT_EQ(printed + buffer, expected);
    EXPECT_EQ(printed.empty(), over == 0) << "printed before it was full";
  }
}

TEST(NamesOnly, AreSortedAndComplete) {
  std::vector<HelpLine> lines;
  std::string expected;
  for (int i = 1; i <= 1000; ++i) {
    lines.emplace_back(std::to_string(i) + std::string(static_cast<std::size_t>(i) % 90, 'n'), "not shown");
  }
  lines.emplace_back(std::string(512, 'z'), "as long as it gets");
  lines.emplace_back("<cr>", " ");
  std::vector<HelpLine> sorted = lines;
  std::sort(sorted.begin(), sorted.end(),
            [](const HelpLine& a, const HelpLine& b) { return CmpHelpString(a.first.c_str(), b.first.c_str()) < 0; });
  for (const auto& [keyword, help] : sorted) {
    expected += "  " + keyword + "\r\n";
  }
  EXPECT_EQ(Print(lines, 0), expected + "\r\n");
  EXPECT_EQ(Print({{"copy", "Copy a file"}, {"<cr>", " "}, {"9", ""}}, 2), "  9\r\n  copy\r\n  <cr>\r\n\r\n");
}

TEST(AnEmptyList, PrintsNothing) {
  EXPECT_EQ(Print({}, 0), "");
  EXPECT_EQ(Print({}, 1), "");
}

std::string g_asked_for;

std::uint32_t NoteTheWord(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* /*element*/) {
  g_asked_for = word;
  ESH_NewHelpInfo("flash:", "A device", list);
  return 0;
}

class HelpTest : public testing::Test {
 protected:
  HelpTest() {
    view_.AddAll({"display version <cr>", "copy STRING<1-511> <cr>", "display interface <cr>", "delete <cr>"});
    auto* copy = static_cast<ESH_CMD_THREAD_S*>(g_pstEshCurrentView->pstCmdVec->ppvArray[1]);
    static_cast<ESH_CMD_ELEMENT_S*>(FirstElement(*copy)->pstNext)->pfnHelp = NoteTheWord;
  }
  ~HelpTest() override { g_pstEshUserView = g_pstEshSysView = nullptr; }

  /// @param line the line without its "?".
  static std::string Ask(const char* line) {
    const UniqueWords words = SplitLine(line);
    ScriptedStdio stdio;
    const std::size_t length = std::strlen(line);
    ESH_Help(words.get(), length == 0 || line[length - 1] == ' ' ? 1 : 0);
    return stdio.TakeOutput();
  }

  TestView view_{"<boot>"};
};

struct HelpCase {
  const char* line;
  const char* output;
  const char* asked_for;
};

constexpr HelpCase kHelp[] = {
    {"display ", "  interface  What it is\r\n  version    What it is\r\n\r\n", ""},
    {"d", "  delete\r\n  display\r\n\r\n", ""},
    {"DIS", "  display\r\n\r\n", ""},
    {"delete ", "  <cr>  \r\n\r\n", ""},
    {"copy ", "  flash:  A device\r\n\r\n", "?"},
    {"copy fl", "  flash:\r\n\r\n", "fl"},
    {"x", "      ^\r\n % Unrecognized command found at '^' position.\r\n", ""},
    {"display x ", "              ^\r\n % Unrecognized command found at '^' position.\r\n", ""},
    {"delete now ", "             ^\r\n % Too many parameters found at '^' position.\r\n", ""},
};

TEST_F(HelpTest, ListsWhatMayFollowOrWhatContinuesTheWord) {
  for (const HelpCase& c : kHelp) {
    g_asked_for.clear();
    EXPECT_EQ(Ask(c.line), c.output) << c.line;
    EXPECT_EQ(g_asked_for, c.asked_for) << c.line;
  }
}

}  // namespace
