#include "term/history.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

class HistoryTest : public testing::Test {
 protected:
  HistoryTest() { ESH_HIS_Init(); }
  ~HistoryTest() override { Forget(); }

  static void Forget() {
    for (ESH_HIS_LINK_S* link = g_stEShHisRec.pstNext; link != &g_stEShHisRec;) {
      auto* node = static_cast<ESH_HIS_NODE_S*>(link);
      link = link->pstNext;
      std::free(node->pcCmd);
      delete node;
    }
    ESH_HIS_Init();
  }
  /// All lines, newest first.
  static std::vector<std::string> UpToTheBell() {
    std::vector<std::string> lines;
    for (char buffer[2048]; ESH_HIS_ArrowUp(sizeof(buffer), buffer) == 1;) {
      lines.emplace_back(buffer);
    }
    return lines;
  }
  static void Enter(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
      ESH_HIS_Add(line.c_str());
    }
  }
};

using Lines = std::vector<std::string>;

struct HistoryCase {
  Lines entered;
  Lines recalled;
  const char* why;
};

TEST_F(HistoryTest, KeepsWhatIsWorthKeeping) {
  const HistoryCase kCases[] = {
      {{}, {}, "empty"},
      {{"", " ", "    "}, {}, "blank lines"},
      {{"# note", "  !x", "!", "   #"}, {}, "remarks"},
      {{"a#", "b !"}, {"b !", "a#"}, "a mark inside is part of a command"},
      {{"\t"}, {"\t"}, "a tab is no blank"},
      {{"a", "b", "b", "  a"}, {"  a", "b", "a"}, "the newest once only, leading blanks count"},
      {{"a", "b", "a"}, {"a", "b", "a"}, "an older one again"},
      {{"a", "A", "a "}, {"a ", "A", "a"}, "compared byte for byte"},
      {{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"},
       {"11", "10", "9", "8", "7", "6", "5", "4", "3", "2"},
       "the last ten"},
  };
  for (const HistoryCase& c : kCases) {
    Enter(c.entered);
    EXPECT_EQ(UpToTheBell(), c.recalled) << c.why;
    EXPECT_EQ(g_stEShHisRec.ulCurNum, c.recalled.size()) << c.why;
    Forget();
  }
}

TEST_F(HistoryTest, RecallIsCutToTheBuffer) {
  Enter({std::string(511, 'x')});
  char buffer[10];
  ASSERT_EQ(ESH_HIS_ArrowUp(sizeof(buffer), buffer), 1);
  EXPECT_STREQ(buffer, "xxxxxxxxx");
}

}  // namespace
