#include "shell/execute.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "shell/command/words.h"
#include "tests/support/test_view.h"

namespace {

/// @return what is printed, and the command that ran.
std::string RunLine(const std::string& line) {
  testing::internal::CaptureStdout();
  ESH_CmdExecute(SplitLine(line).get());
  return testing::internal::GetCapturedStdout() + TestView::TakeRan();
}

/// @param column the caret's in the line.
std::string At(std::size_t column, const char* fault) {
  return std::string(column, ' ') + "^\r\n % " + fault + " found at '^' position.\r\n";
}

/// Rules "no" out, and cannot tell of anything else.
std::uint16_t Check(const char* word) { return word[0] == 'n' ? 0 : 2; }

TEST(Execute, RunsTheOneCommandThatIsMeantOrTellsWhatIsWrong) {
  TestView view("", {"alpha one <cr>", "apple two <cr>", "beta <cr>", "betas <cr>", "gamma one <cr>", "gauge onyx <cr>",
                     "gauge ox <cr>", "delta one <cr>", "delve <cr>", "twice <cr>", "twice <cr>", "load STRING<1-4> to",
                     "load STRING<1-4> to go <cr>"});
  for (const char* more :
       {"ping X.X.X.X <cr>", "ping all <cr>", "set INTEGER<1-5> <cr>", "set STRING<1-3> <cr>", "set six <cr>",
        "show X:X::X:X <cr>", "show X:X::X:X/M <cr>", "move INTEGER<1-2147483647> <cr>", "move <cr>",
        "note INTEGER<7-7> <cr>", "none INTEGER<9-1> <cr>", "wide INTEGER<1-10000000000> <cr>"})
    view.Add(more);
  view.Add("note STRING<1-3> <cr>", nullptr, Check);
  const std::tuple<const char*, const char*, std::string> kLines[] = {
      {"all but blanks is part of a word", "\t\v\f alpha \t o\tne", At(12, "Unrecognized command")},
      {"longer than the keyword", "alphas", At(0, "Unrecognized command")},
      {"a word behind the end", "alpha one two three", At(10, "Too many parameters")},
      {"a word behind a command without an end", "load abcd to x", At(13, "Unrecognized command")},
      {"a whole keyword that begins another one", "beta", "beta <cr>\n"},
      {"a later word settles what was meant", "a one", "alpha one <cr>\n"},
      {"no later word does", "a three", At(0, "Ambiguous command")},
      {"nothing follows that could", " a", At(1, "Ambiguous command")},
      {"the first ambiguous word is told", "ga on x", At(0, "Ambiguous command")},
      {"a later ambiguous word", "gauge o", At(6, "Ambiguous command")},
      {"the end of the line settles what was meant", "de", "delve <cr>\n"},
      {"two ends", " twice", At(7, "Ambiguous command")},
      {"one of two values", "set 9", "set STRING<1-3> <cr>\n"},
      {"both values", "set 5", At(4, "Ambiguous command")},
      {"neither value", "set 6789", At(4, "Wrong parameter")},
      {"the keyword before a value", "set si", "set six <cr>\n"},
      {"with prefix length", "show 1::/64", "show X:X::X:X/M <cr>\n"},
      {"a value that is ruled out", "note no", At(5, "Wrong parameter")},
      {"a value of which cannot be told", "note it", At(5, "Wrong parameter")},
      {"and which another command takes", "note 7", At(5, "Ambiguous command")},
      {"no range takes 0 alone", "none 0", "none INTEGER<9-1> <cr>\n"},
      {"nor is one of eleven digits", "wide 0", "wide INTEGER<1-10000000000> <cr>\n"},
      {"the longest bound", "move 2147483647", "move INTEGER<1-2147483647> <cr>\n"},
      {"a wrong value rather than too many words", "move 2147483648", At(5, "Wrong parameter")},
  };
  for (const auto& [why, line, result] : kLines) EXPECT_EQ(RunLine(line), result) << why;
  EXPECT_EQ(WordAt(*SplitLine("  word x"), 0)->ulEnd, 5U);
}

}  // namespace
