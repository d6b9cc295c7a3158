#include "term/completion.h"

#include <gtest/gtest.h>
#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "shell/command_tree.h"
#include "shell/words.h"
#include "tests/support/test_view.h"
#include "util/fixed_text.h"

namespace {

constexpr const char* kNames[] = {"flash:/b.cfg", "cfa0:/", "flash:/a.cfg", "STRING<1-511>", "<cr>"};

std::uint32_t ListNames(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* /*element*/) {
  for (const char* name : kNames) {
    if (strncasecmp(name, word, std::strlen(word)) == 0) {
      ESH_NewHelpInfo(name, "", list);
    }
  }
  return 0;
}

/// @return the line after TAB behind it.
std::string Tab(const std::string& typed) {
  char line[2048];
  CopyText(line, typed);
  const UniqueWords words = SplitLine(line);
  ESH_TabComplete(words.get(), line);
  return line;
}

struct TabCase {
  std::vector<const char*> commands;
  const char* typed;
  std::vector<const char*> lines;  // after each TAB
  const char* why;
};

class CompletionTest : public testing::Test {
 protected:
  CompletionTest() { ESH_ResetTabState(); }

  static void UseNames(std::uint64_t command) {
    auto* thread = static_cast<ESH_CMD_THREAD_S*>(g_pstEshCurrentView->pstCmdVec->ppvArray[command]);
    static_cast<ESH_CMD_ELEMENT_S*>(FirstElement(*thread)->pstNext)->pfnHelp = ListNames;
  }
};

const TabCase kTabs[] = {
    {{"delete <cr>", "display <cr>"}, "di", {"display ", "display "}, "the only one, with a blank"},
    {{"delete <cr>", "display <cr>"}, "d", {"delete", "display", "delete"}, "nothing in common: one after the other"},
    {{"display <cr>", "delete <cr>"}, "d", {"display", "delete", "display"}, "in the order of the tree"},
    {{"delete <cr>", "display <cr>"}, "D", {"delete", "display"}, "case does not matter"},
    {{"delete <cr>", "display <cr>"}, "DI", {"display "}, "the tree's spelling"},
    {{"reboot <cr>", "reset <cr>"}, "r", {"re", "reboot", "reset", "reboot"}, "first what they share"},
    {{"reboot <cr>", "reset <cr>"}, "RE", {"reboot", "reset"}, "what they share is typed already"},
    {{"reset <cr>", "resetall <cr>"}, "reset", {"resetall", "reset", "resetall"}, "the typed word comes last"},
    {{"reset <cr>", "resetall <cr>"}, "r", {"reset", "resetall", "reset"}, "the shared word is a candidate itself"},
    {{"display version <cr>", "display interface <cr>"}, "dis", {"display "}, "the same word twice is one"},
    {{"display version <cr>", "display interface <cr>"}, "dis v", {"dis version "}, "only the last word"},
    {{"display version <cr>", "display interface <cr>"}, "dis ", {"display "}, "a finished word"},
    {{"delete <cr>", "display <cr>"}, "   dis", {"display "}, "leading blanks are dropped"},
    {{"delete <cr>", "display <cr>"}, "  d", {"delete", "display"}, "leading blanks are dropped at once"},
    {{"delete <cr>", "display <cr>"}, "x", {"x", "x"}, "no match"},
    {{"delete <cr>", "display <cr>"}, "  delete x", {"  delete x"}, "no match: the line stays as typed"},
    {{"delete <cr>", "display <cr>"}, "", {""}, "no word"},
    {{"delete <cr>", "display <cr>"}, "   ", {""}, "no word: the blanks go"},
    {{"ping X.X.X.X <cr>"}, "ping 1.2", {"ping 1.2"}, "an address"},
    {{"more STRING<1-511> <cr>"}, "more S", {"more S"}, "a placeholder is nothing to type"},
    {{"more STRING<1-511> <cr>"}, "more f", {"more flash:/", "more flash:/b.cfg", "more flash:/a.cfg"}, "names"},
    {{"more STRING<1-511> <cr>"}, "more C", {"more cfa0:/ "}, "the only name"},
    {{"more STRING<1-511> <cr>"}, "more <", {"more <"}, "the end of the command is nothing to type"},
};

TEST_F(CompletionTest, CompletesOrStepsThroughTheCandidates) {
  for (const TabCase& c : kTabs) {
    TestView view("<boot>");
    for (const char* command : c.commands) {
      view.Add(command);
    }
    if (std::strncmp(c.commands[0], "more", 4) == 0) {
      UseNames(0);
    }
    ESH_ResetTabState();
    std::string line = c.typed;
    for (const char* expected : c.lines) {
      line = Tab(line);
      EXPECT_EQ(line, expected) << testing::PrintToString(c.typed) << ": " << c.why;
    }
  }
}

TEST_F(CompletionTest, ACycleEndsWhenSomethingElseIsTyped) {
  TestView view("<boot>");
  view.AddAll(
      {"reboot <cr>", "reset <cr>", "reset all now <cr>", "reset any <cr>", "copy resume <cr>", "copy rescan <cr>"});
  EXPECT_EQ(Tab("r"), "re");
  EXPECT_EQ(Tab("re"), "reboot");
  EXPECT_EQ(Tab("re "), "reboot") << "a finished word";
  EXPECT_EQ(Tab("res"), "reset ") << "another word";
  EXPECT_EQ(Tab("r"), "re") << "the first word again";
  EXPECT_EQ(Tab("copy re"), "copy res") << "another number of words, one of which is the same";
  EXPECT_EQ(Tab("reset a"), "reset all") << "another number of words";
  EXPECT_EQ(Tab("reset all"), "reset any");
  EXPECT_EQ(Tab("reset all x"), "reset all x");
  EXPECT_EQ(g_stTabState.ulWordNum, 0U) << "a failed match ends the cycle";
  EXPECT_STREQ(g_stTabState.szPrefix, "");
  EXPECT_STREQ(g_stTabState.szLast, "");
  EXPECT_EQ(g_stTabState.usAddBlank, 1);
}

TEST_F(CompletionTest, StaysWithinALine) {
  TestView view("<boot>");
  view.Add("display <cr>");
  EXPECT_EQ(Tab(std::string(503, ' ') + "dis"), "display ") << "room for the blank";
  EXPECT_EQ(Tab(std::string(504, ' ') + "dis"), "display") << "room for the word";
  EXPECT_EQ(Tab(std::string(505, ' ') + "dis"), "displa") << "the word is cut";
  EXPECT_EQ(Tab(std::string(508, ' ') + "dis"), "dis") << "no room at all";
}

TEST_F(CompletionTest, PutsNothingInWhenEveryCandidateIsTheTypedWord) {
  const UniqueHelpList candidates(VEC_Alloc(8));
  ESH_NewHelpInfo("reset", "", candidates.get());
  ESH_NewHelpInfo("Reset", "", candidates.get());
  char line[512] = " RESET";
  const UniqueWords words = SplitLine(line);
  TabPrintFirst(words.get(), line, candidates.get(), "RESET");
  EXPECT_STREQ(line, " RESET");
  EXPECT_STREQ(g_stTabState.szLast, "");
}

}  // namespace
