#include "shell/command_tree.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_view.h"
#include "util/vector.h"

namespace {

/// What an element takes as its range from its text, as "min-max".
std::string RangeOf(const char* text, std::uint32_t type) {
  const TestView view("<t>");
  ESH_CMD_THREAD_S* thread = ESH_CmdThread_Init(nullptr);
  ESH_CmdThread_Reg2View(g_pstEshCurrentView, thread);
  ESH_CmdThread_AddCmdElement(thread, text, "", nullptr, nullptr, nullptr, type);
  return std::to_string(FirstElement(*thread)->ulMin) + "-" + std::to_string(FirstElement(*thread)->ulMax);
}

TEST(CommandTree, TakesRangesOfTextsAndNumbersOnlyWhenTheyAreWellFormed) {
  EXPECT_EQ(RangeOf("STRING<1-15>", ESH_ELEM_STRING), "1-15");
  EXPECT_EQ(RangeOf("INTEGER<5-5>", ESH_ELEM_INTEGER), "5-5");
  EXPECT_EQ(RangeOf("INTEGER<0-9999999999>", ESH_ELEM_INTEGER), "0-9999999999");
  for (const char* text :
       {"INTEGER<0-10000000000>", "INTEGER<00000000001-5>", "INTEGER<5-3>", "INTEGER<-1-5>", "INTEGER<1--5>",
        "INTEGER< 1-5>", "INTEGER<+1-5>", "INTEGER<a-f>", "INTEGER<1-1f>", "INTEGER<1-5-9>", "STRING<1-15>x",
        "STRING<1-15>>", "STRING<1-15", "STRING<15>", "STRING", "STRING<-15>", "STRING<1->"}) {
    EXPECT_EQ(RangeOf(text, text[0] == 'S' ? ESH_ELEM_STRING : ESH_ELEM_INTEGER), "0-0") << text;
  }
  EXPECT_EQ(RangeOf("X.X.X.X<1-5>", ESH_ELEM_IPV4), "0-0");
  EXPECT_EQ(RangeOf("word<1-5>", ESH_ELEM_KEYWORD), "0-0");
}

TEST(CommandTree, LinksTheWordsInACircleThroughTheCommand) {
  TestView view("<t>");
  view.Add("set STRING<1-9>");
  auto* thread = static_cast<ESH_CMD_THREAD_S*>(g_pstEshCurrentView->pstCmdVec->ppvArray[0]);
  ESH_CmdThread_AddCr(thread);

  const ESH_CMD_ELEMENT_S* keyword = FirstElement(*thread);
  const ESH_CMD_ELEMENT_S* parameter = NextElement(*thread, *keyword);
  const ESH_CMD_ELEMENT_S* end = NextElement(*thread, *parameter);
  EXPECT_EQ(NextElement(*thread, *end), nullptr);
  EXPECT_EQ(ThreadOfCr(*end), thread);
  EXPECT_EQ(thread->pstPrev, end);
  EXPECT_EQ(end->pstPrev, parameter);
  EXPECT_EQ(parameter->pstPrev, keyword);
  EXPECT_EQ(keyword->pstPrev, thread);

  EXPECT_EQ(keyword->ulKeyLen, 3U);
  EXPECT_EQ(parameter->ulKeyLen, 0U) << "only a keyword has a length";
  EXPECT_EQ(end->ulKeyLen, 0U);
  EXPECT_STREQ(end->pcKeyWord, "<cr>");
  EXPECT_STREQ(end->pcHelp, " ");
  EXPECT_EQ(end->ulType, ESH_ELEM_CR);
}

}  // namespace
