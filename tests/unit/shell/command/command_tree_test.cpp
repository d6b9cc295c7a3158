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
    {"INTEGER<0-9999999999>", "0-9999999999"},
    {"INTEGER<0-10000000000>", "0-0"},
    {"INTEGER<5-3>", "0-0"},
    {"INTEGER<1--5>", "0-0"},
    {"INTEGER<1-1f>", "0-0"},
    {"STRING<1-15>x", "0-0"},
    {"STRING<1-15", "0-0"},
    {"STRING<15>", "0-0"},
    {"STRING", "0-0"},
    {"STRING<1->", "0-0"},
    {"X.X.X.X<1-5>", "0-0"},
};

TEST(CommandTree, TakesRangesOfTextsAndNumbersOnlyWhenTheyAreWellFormed) {
  for (const auto& c : kRanges) {
    const TestView view("<t>", {(std::string(c.text) + " <cr>").c_str()});
    const ESH_CMD_ELEMENT_S& element = *FirstElement(OnlyCommand());
    EXPECT_EQ(std::to_string(element.ulMin) + "-" + std::to_string(element.ulMax), c.range) << c.text;
  }
}

}  // namespace
