#include "term/history.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/term/scripted_editor.h"

namespace {

constexpr std::size_t kRoom = 10;

constexpr struct {
  const char* why;
  const char* line;
  const char* newest;
} kLines[] = {
    {"nothing", "", ""},
    {"blanks", "    ", ""},
    {"a remark", "   # note", ""},
    {"another kind", "  !x", ""},
    {"a mark inside is part of a command", "a!#", "a!#"},
    {"a tab is no blank", "\t", "\t"},
    {"a command", "a", "a"},
    {"leading blanks count", "  a", "  a"},
    {"a line cut to the buffer", "0123456789", "012345678"},
};

TEST(History, KeepsWhatIsWorthKeeping) {
  const ScriptedEditor editor;
  char buffer[kRoom] = "";
  for (const auto& c : kLines) {
    ESH_HIS_Add(c.line);
    (void)ESH_HIS_ArrowUp(sizeof(buffer), buffer);
    EXPECT_STREQ(buffer, c.newest) << c.why;
  }
}

TEST(History, KeepsTheLastTenAndNoneTwiceInARow) {
  const ScriptedEditor editor;
  for (const char* line : {"0", "1", "2", "2", "3", "2", "A", "a", "4", "5", "6", "7"}) ESH_HIS_Add(line);
  std::string recalled;
  for (char buffer[kRoom]; ESH_HIS_ArrowUp(sizeof(buffer), buffer) == 1;) recalled += buffer;
  EXPECT_EQ(recalled, "7654aA2321");
  EXPECT_EQ(g_stEShHisRec.ulCurNum, 10U);
}

}  // namespace
