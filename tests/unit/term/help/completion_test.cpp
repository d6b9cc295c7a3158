#include "term/help/completion.h"

#include <gtest/gtest.h>
#include <strings.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "shell/command/command_tree.h"
#include "shell/command/words.h"
#include "tests/support/test_view.h"
#include "util/fixed_text.h"

namespace {

std::uint32_t ListNames(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* /*element*/) {
  for (const char* name : {"flash:/b.cfg", "cfa0:/", "Flash:/a.cfg", "STRING<1-511>", "<cr>"})
    if (strncasecmp(name, word, std::strlen(word)) == 0) ESH_NewHelpInfo(name, "", list);
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

const std::vector<const char*> kDeleteDisplay = {"delete <cr>", "display <cr>"};
const std::vector<const char*> kRebootReset = {"REboot <cr>", "reset <cr>"};
const std::vector<const char*> kMore = {"more STRING<1-511> <cr>"};

const std::tuple<const char*, std::vector<const char*>, std::string, std::vector<const char*>> kTabs[] = {
    {"first what they share", kRebootReset, "r", {"re", "REboot", "reset", "REboot"}},
    {"what they share is typed already", kRebootReset, "RE", {"REboot", "reset"}},
    {"the typed word comes last", {"reset <cr>", "resetall <cr>"}, "Reset", {"resetall", "reset", "resetall"}},
    {"the shared word is a candidate itself", {"reset <cr>", "resetall <cr>"}, "r", {"reset", "resetall", "reset"}},
    {"in another case alone", {"A <cr>", "a <cr>", "ab <cr>"}, "a", {"ab", "A", "a", "ab"}},
    {"the same word twice is one", {"display version <cr>", "display interface <cr>"}, "dis", {"display ", "display "}},
    {"leading blanks are dropped", kDeleteDisplay, "  d", {"delete", "display"}},
    {"no match: the line stays as typed", kDeleteDisplay, "  delete x", {"  delete x"}},
    {"no word: the blanks go", kDeleteDisplay, "   ", {""}},
    {"a placeholder is nothing to type", kMore, "more S", {"more S"}},
    {"names", kMore, "more f", {"more flash:/", "more flash:/b.cfg", "more Flash:/a.cfg"}},
    {"room for the blank", kDeleteDisplay, std::string(503, ' ') + "dis", {"display "}},
    {"room for the word", kDeleteDisplay, std::string(504, ' ') + "dis", {"display"}},
    {"the word is cut", kDeleteDisplay, std::string(505, ' ') + "dis", {"displa"}},
};

TEST(Completion, CompletesOrStepsThroughTheCandidates) {
  for (const auto& [why, commands, typed, after_each_tab] : kTabs) {
    TestView view("<boot>");
    for (const char* command : commands) view.Add(command, ListNames);
    ESH_ResetTabState();
    std::string line = typed;
    for (const char* expected : after_each_tab) {
      line = Tab(line);
      EXPECT_EQ(line, expected) << why;
    }
  }
}

TEST(Completion, ACycleEndsWhenSomethingElseIsTyped) {
  constexpr std::tuple<const char*, const char*, const char*> kSteps[] = {
      {"a cycle begins", "r", "re"},
      {"and goes on", "re", "reboot"},
      {"a finished word", "re ", "reboot"},
      {"another word", "res", "reset "},
      {"the first word again", "r", "re"},
      {"another number of words, one of which is the same", "copy re", "copy res"},
      {"another number of words", "reset a", "reset all"},
  };
  const TestView view("<boot>", {"reboot <cr>", "reset <cr>", "reset all now <cr>", "reset any <cr>",
                                 "copy resume <cr>", "copy rescan <cr>"});
  ESH_ResetTabState();
  for (const auto& [why, typed, completed] : kSteps) EXPECT_EQ(Tab(typed), completed) << why;
}

}  // namespace
