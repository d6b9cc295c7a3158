#include "term/prompts.h"

#include <gtest/gtest.h>

#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

#define REMINDER "\r\nBefore pressing ENTER you must choose 'YES' or 'NO'[Y/N]:"
#define TAKEN_BACK "\033[1D\033[K"

struct AnswerCase {
  const char* keys;
  std::uint16_t yes;
  const char* output;
  const char* why;
};

constexpr AnswerCase kAnswers[] = {
    {"y\n", 1, "y", "yes"},
    {"Y\r", 1, "Y", "echoed as typed"},
    {"n\n", 0, "n", "no"},
    {"N\n", 0, "N", "no"},
    {"Yy\n", 1, "Y", "the second is not echoed"},
    {"yn\n", 1, "y", "nor does it change the choice"},
    {"ny\n", 0, "n", "nor this way round"},
    {"y\bn\n", 0, "y" TAKEN_BACK "n", "taken back"},
    {"n\177y\n", 1, "n" TAKEN_BACK "y", "taken back with the other key"},
    {"\b\177\by\b\by\n", 1, "y" TAKEN_BACK "y", "without a choice nothing is taken back"},
    {"\n\ry\n", 1, REMINDER REMINDER "y", "Enter needs a choice"},
    {"y\b\nn\n", 0, "y" TAKEN_BACK REMINDER "n", "one that stands"},
    {"y\003", 0, "y", "Ctrl+C after a yes"},
    {"\003", 0, "", "Ctrl+C"},
    {" q?\t\032\033[A\001y\n", 1, "y", "other keys, without a bell"},
    {"", 0, "", "no key in time"},
    {"y", 0, "y", "no Enter in time"},
};

TEST(Confirm, TakesYesOnlyForAYesThatStandsAtEnter) {
  for (const AnswerCase& c : kAnswers) {
    ScriptedEditor editor(c.keys);
    EXPECT_EQ(ESH_LINE_GetConfirm(1), c.yes) << c.why;
    EXPECT_EQ(editor.TakeOutput(), c.output) << c.why;
    EXPECT_EQ(g_stESh_Line.ulMode, std::uint32_t{ESH_LINE_MODE_CONFIRM});
  }
}

}  // namespace
