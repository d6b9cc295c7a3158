#include "shell/command/command_tree.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_view.h"
#include "util/vector.h"

namespace {

ESH_CMD_THREAD_S& OnlyCommand() { return *static_cast<ESH_CMD_THREAD_S*>(g_pstEshCurrentView->pstCmdVec->ppvArray[0]); }

constexpr struct {
  const char* text;
  const char* range;
} kRanges[] = {
    {"STRING<1-15>", "1-15"},
    {"INTEGER<5-5>", "5-5"},
    {"INTEGER<0-9999999999>", "0-9999999999"},
    {"INTEGER<0-10000000000>", "0-0"},
    {"INTEGER<5-3>", "0-0"},
    {"INTEGER<1--5>", "0-0"},
    {"INTEGER<+1-5>", "0-0"},
    {"INTEGER<1-1f>", "0-0"},
    {"STRING<1-15>x", "0-0"},
    {"STRING<1-15", "0-0"},
    {"STRING<15>", "0-0"},
    {"STRING", "0-0"},
    {"STRING<1->", "0-0"},
    {"X.X.X.X<1-5>", "0-0"},
    {"word<1-5>", "0-0"},
};

TEST(CommandTree, TakesRangesOfTextsAndNumbersOnlyWhenTheyAreWellFormed) {
  for (const auto& c : kRanges) {
    const TestView view("<t>", {(std::string(c.text) + " <cr>").c_str()});
    const ESH_CMD_ELEMENT_S& element = *FirstElement(OnlyCommand());
    EXPECT_EQ(std::to_string(element.ulMin) + "-" + std::to_string(element.ulMax), c.range) << c.text;
  }
}

TEST(CommandTree, LinksTheWordsInACircleThroughTheCommand) {
  const TestView view("<t>", {"set STRING<1-9> <cr>"});
  ESH_CMD_THREAD_S& command = OnlyCommand();
  const ESH_CMD_ELEMENT_S* keyword = FirstElement(command);
  const ESH_CMD_ELEMENT_S* parameter = NextElement(command, *keyword);
  const ESH_CMD_ELEMENT_S* end = NextElement(command, *parameter);
  EXPECT_EQ(NextElement(command, *end), nullptr);
  EXPECT_EQ(ThreadOfCr(*end), &command);
  EXPECT_EQ(command.pstPrev, end);
  EXPECT_EQ(end->pstPrev, parameter);
  EXPECT_EQ(parameter->pstPrev, keyword);
  EXPECT_EQ(keyword->pstPrev, &command);
  EXPECT_EQ(keyword->ulKeyLen, 3U);
  EXPECT_EQ(parameter->ulKeyLen, 0U) << "only a keyword has a length";
  EXPECT_STREQ(end->pcHelp, " ");
}

}  // namespace
