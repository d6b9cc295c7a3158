#include "shell/execute.h"

#include <gtest/gtest.h>

#include <string>

#include "shell/parameter.h"
#include "shell/words.h"
#include "tests/support/test_view.h"
#include "util/vector.h"

namespace {

constexpr char kUnrecognized[] = "^\r\n % Unrecognized command found at '^' position.\r\n";
constexpr char kTooMany[] = "^\r\n % Too many parameters found at '^' position.\r\n";
constexpr char kWrong[] = "^\r\n % Wrong parameter found at '^' position.\r\n";
constexpr char kIncomplete[] = "^\r\n % Incomplete command found at '^' position.\r\n";
constexpr char kAmbiguous[] = "^\r\n % Ambiguous command found at '^' position.\r\n";

std::string Execute(const std::string& line) {
  testing::internal::CaptureStdout();
  ESH_CmdExecute(SplitLine(line).get());
  return testing::internal::GetCapturedStdout();
}

struct ErrorCase {
  const char* line;
  std::size_t column;  // of the caret in the line
  const char* message;
};

void ExpectErrors(std::initializer_list<ErrorCase> cases) {
  for (const ErrorCase& c : cases) {
    const std::size_t prompt_length = 6;
    EXPECT_EQ(Execute(c.line), std::string(prompt_length + c.column, ' ') + c.message) << c.line;
    EXPECT_EQ(TestView::TakeRan(), "") << c.line;
  }
}

struct RunCase {
  const char* line;
  const char* command;
};

void ExpectRuns(std::initializer_list<RunCase> cases) {
  for (const RunCase& c : cases) {
    EXPECT_EQ(Execute(c.line), "") << c.line;
    EXPECT_EQ(TestView::TakeRan(), std::string(c.command) + "\n") << c.line;
  }
}

TEST(Execute, PutsTheCaretUnderWhatIsWrong) {
  TestView view("<boot>");
  view.AddAll(
      {"alpha one <cr>", "interface <cr>", "interface m-eth0 <cr>", "ping X.X.X.X <cr>", "load STRING<1-4> to"});
  ExpectErrors({
      {"zeta", 0, kUnrecognized},
      {"  alpha   zeta one", 10, kUnrecognized},
      {"alpha one two three", 10, kTooMany},
      {"ping 1.2.3", 5, kWrong},
      {"ping 1.2.3.4 x", 13, kTooMany},
      {"alpha", 6, kIncomplete},
      {"  al  ", 5, kIncomplete},
      {"ping", 5, kIncomplete},
      {"load abcd to", 13, kIncomplete},  // a command without an end
      {"load abcd to x", 13, kUnrecognized},
      {"load abcde", 5, kWrong},
  });
  ExpectRuns({{"int", "interface <cr>"}, {"INTERFACE M", "interface m-eth0 <cr>"}, {"a o", "alpha one <cr>"}});
}

TEST(Execute, ALaterWordMaySettleWhatWasMeant) {
  TestView view("<boot>");
  view.AddAll({"alpha one <cr>", "apple two <cr>"});
  ExpectRuns({{"a one", "alpha one <cr>"}, {"a t", "apple two <cr>"}});
  ExpectErrors({
      {" a", 1, kAmbiguous},
      {"a three", 0, kAmbiguous},
      {"a one x", 0, kAmbiguous},
      {"alpha two", 6, kUnrecognized},
  });
  view.Add("apple <cr>");
  ExpectRuns({{"a", "apple <cr>"}});
}

TEST(Execute, TheFirstAmbiguousWordIsReported) {
  TestView view("<boot>");
  view.AddAll({"alpha one <cr>", "apple onyx <cr>"});
  ExpectErrors({{"a on", 0, kAmbiguous}, {"a on x", 0, kAmbiguous}});
  view.AddAll({"alpha ox <cr>"});
  ExpectErrors({{"alpha o", 6, kAmbiguous}});
}

TEST(Execute, RecordsEachParametersOwnWordBeforeTheHandlerRuns) {
  TestView view("<boot>");
  view.Add("move STRING<1-511> to STRING<1-511> at X.X.X.X <cr>",
           {ESH_RecordSourceFile, ESH_RecordDestFile, ESH_RecordIPv4});
  ExpectRuns({{"m a.txt t b.txt at 1.2.3.4", "move STRING<1-511> to STRING<1-511> at X.X.X.X <cr>"}});
  EXPECT_STREQ(g_szSourceFile, "a.txt");
  EXPECT_STREQ(g_szDestFile, "b.txt");
  EXPECT_STREQ(g_szIPv4Address, "1.2.3.4");
  ExpectErrors({{"move c.txt to d.txt at 1.2.3", 23, kWrong}});
  EXPECT_STREQ(g_szSourceFile, "a.txt") << "a line that does not match changes nothing";
}

std::uint32_t g_records = 0;

TEST(Execute, RunsACommandWhoseRecordFails) {
  TestView view("<boot>");
  view.Add("set STRING<1-9> <cr>", {[](const char*) -> std::uint32_t {
             ++g_records;
             return 1;
           }});
  ExpectRuns({{"set x", "set STRING<1-9> <cr>"}});
  EXPECT_EQ(g_records, 1U);
}

}  // namespace
