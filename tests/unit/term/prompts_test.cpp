#include "term/prompts.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

#define REMINDER "\r\nBefore pressing ENTER you must choose 'YES' or 'NO'[Y/N]:"
#define TAKEN_BACK "\033[1D\033[K"

const std::tuple<const char*, std::string, std::uint16_t, const char*> kAnswers[] = {
    {"the second is not echoed", "Yy\n", 1, "Y"},
    {"nor does it change the choice", "yn\n", 1, "y"},
    {"without a choice nothing is taken back", "\b\177\bn\177\177y\n", 1, "n" TAKEN_BACK "y"},
    {"Enter needs a choice", "\n\ry\n", 1, REMINDER REMINDER "y"},
    {"one that stands", "y\b\nn\n", 0, "y" TAKEN_BACK REMINDER "n"},
    {"Ctrl+C after a yes", "y\003\n", 0, "y"},
    {"other keys, without a bell", " q?\t\032\033[A\001y\n", 1, "y"},
    {"a key just in time", std::string(9, '\0') + "y\n", 1, "y"},
    {"no Enter in time", "y" + std::string(10, '\0') + "\n", 0, "y"},
};

TEST(Confirm, TakesYesOnlyForAYesThatStandsAtEnter) {
  for (const auto& [why, keys, yes, output] : kAnswers) {
    ScriptedEditor editor(keys);
    EXPECT_EQ(ESH_LINE_GetConfirm(1), yes) << why;
    EXPECT_EQ(editor.TakeOutput(), output) << why;
    EXPECT_EQ(g_stESh_Line.ulMode, std::uint32_t{ESH_LINE_MODE_CONFIRM});
  }
}

}  // namespace
