#include "shell/execute.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "shell/command/words.h"
#include "tests/support/test_view.h"

namespace {

/// @return what is printed, and the command that ran.
std::string RunLine(const std::string& line) {
  testing::internal::CaptureStdout();
  ESH_CmdExecute(SplitLine(line).get());
  return testing::internal::GetCapturedStdout() + TestView::TakeRan();
}

std::string Ran(const char* command) { return std::string(command) + "\n"; }

/// @param column the caret's in the line.
std::string At(std::size_t column, const char* fault) {
  return std::string(column, ' ') + "^\r\n % " + fault + " found at '^' position.\r\n";
}

/// Rules "no" out, takes "ok", and cannot tell of anything else.
std::uint16_t Check(const char* word) {
  const std::string text(word);
  return text == "no" ? 0 : text == "ok" ? 1 : 2;
}

struct LineCase {
  const char* why;
  const char* line;
  std::string result;
};

void ExpectAll(std::initializer_list<LineCase> lines) {
  for (const LineCase& c : lines) EXPECT_EQ(RunLine(c.line), c.result) << c.why;
}

TEST(Execute, RunsTheCommandThatTheWordsBeginOrTellsWhatIsWrong) {
  TestView view("", {"alpha one <cr>", "interface <cr>", "interface m-eth0 <cr>", "ping X.X.X.X <cr>",
                     "load STRING<1-4> to", "load STRING<1-4> to go <cr>"});
  ExpectAll({
      {"all but blanks is part of a word", "\t\v\f alpha \t o\tne", At(12, "Unrecognized command")},
      {"longer than the keyword", "alphas", At(0, "Unrecognized command")},
      {"no such second word", "  alpha   zeta one", At(10, "Unrecognized command")},
      {"a word behind the end", "alpha one two three", At(10, "Too many parameters")},
      {"a command without an end", "load abcd to", At(13, "Incomplete command")},
      {"and words behind it", "load abcd to x", At(13, "Unrecognized command")},
  });
}

TEST(Execute, SettlesWhatWasMeantByLaterWordsAndTheLinesEnd) {
  TestView view("", {"alpha one <cr>", "apple two <cr>", "beta <cr>", "betas <cr>", "gamma one <cr>", "gauge onyx <cr>",
                     "gauge ox <cr>", "delta one <cr>", "delve <cr>", "twice <cr>", "twice <cr>"});
  ExpectAll({
      {"a whole keyword that begins another one", "beta", Ran("beta <cr>")},
      {"the beginning of both", "bet", At(0, "Ambiguous command")},
      {"a later word settles what was meant", "a one", Ran("alpha one <cr>")},
      {"no later word does", "a three", At(0, "Ambiguous command")},
      {"nothing follows that could", " a", At(1, "Ambiguous command")},
      {"the first ambiguous word is told", "ga on x", At(0, "Ambiguous command")},
      {"a later ambiguous word", "gauge o", At(6, "Ambiguous command")},
      {"the end of the line settles what was meant", "de", Ran("delve <cr>")},
      {"two ends", "twice", At(6, "Ambiguous command")},
  });
}

TEST(Execute, TakesKeywordsBeforeValuesAndValuesThatFit) {
  TestView view("",
                {"ping X.X.X.X <cr>", "ping all <cr>", "set INTEGER<1-5> <cr>", "set STRING<1-3> <cr>", "set six <cr>",
                 "show X:X::X:X <cr>", "show X:X::X:X/M <cr>", "move INTEGER<1-2147483647> <cr>", "move <cr>"});
  view.Add("note STRING<1-3> <cr>", nullptr, Check);
  for (const char* more : {"note INTEGER<7-7> <cr>", "none INTEGER<9-1> <cr>", "wide INTEGER<1-10000000000> <cr>"})
    view.Add(more);
  ExpectAll({
      {"a word behind a value", "ping 1.2.3.4 x", At(13, "Too many parameters")},
      {"one of two values", "set 9", Ran("set STRING<1-3> <cr>")},
      {"both values", "set 5", At(4, "Ambiguous command")},
      {"neither value", "set 6789", At(4, "Wrong parameter")},
      {"the keyword before a value", "set si", Ran("set six <cr>")},
      {"with prefix length", "show 1::/64", Ran("show X:X::X:X/M <cr>")},
      {"a value that is ruled out", "note no", At(5, "Wrong parameter")},
      {"a value that is taken", "note ok", Ran("note STRING<1-3> <cr>")},
      {"a value of which cannot be told", "note it", At(5, "Wrong parameter")},
      {"and which another command takes", "note 7", At(5, "Ambiguous command")},
      {"no range takes 0 alone", "none 0", Ran("none INTEGER<9-1> <cr>")},
      {"nor is one of eleven digits", "wide 0", Ran("wide INTEGER<1-10000000000> <cr>")},
      {"the longest bound", "move 2147483647", Ran("move INTEGER<1-2147483647> <cr>")},
      {"a wrong value rather than too many words", "move 2147483648", At(5, "Wrong parameter")},
  });
}

}  // namespace
