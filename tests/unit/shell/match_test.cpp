#include "shell/match.h"

#include <gtest/gtest.h>

#include "shell/words.h"
#include "tests/support/test_view.h"
#include "util/vector.h"

namespace {

struct FilterCase {
  const char* why;
  std::initializer_list<const char*> commands;
  const char* word;
  std::uint32_t level;
  const char* left;
};

TEST(Filter, KeepsWhatTheWordCanMean) {
  const FilterCase cases[] = {
      {"a beginning", {"alpha", "beta"}, "al", ESH_MATCH_PARTIAL, "alpha"},
      {"case does not count", {"alpha", "beta"}, "ALPHA", ESH_MATCH_EXACT, "alpha"},
      {"longer than the keyword", {"alpha"}, "alphas", ESH_MATCH_NONE, ""},
      {"two meanings", {"alpha", "apple"}, "a", ESH_MATCH_AMBIGUOUS, "alpha apple"},
      {"one keyword in two commands", {"alpha one", "alpha two"}, "a", ESH_MATCH_PARTIAL, "alpha alpha"},
      {"exact beats longer", {"alphabet", "alpha", "alphas"}, "alpha", ESH_MATCH_EXACT, "alpha"},
      {"keyword beats parameter", {"STRING<1-9>", "alpha"}, "al", ESH_MATCH_PARTIAL, "alpha"},
      {"exact beats parameter", {"STRING<1-9>", "alpha"}, "alpha", ESH_MATCH_EXACT, "alpha"},
      {"only the parameter fits", {"alpha", "STRING<1-9>"}, "x", ESH_MATCH_PARAM, "STRING<1-9>"},
      {"one of two values fits", {"INTEGER<1-5>", "STRING<1-9>"}, "9", ESH_MATCH_PARAM, "STRING<1-9>"},
      {"both values fit", {"INTEGER<1-5>", "STRING<1-9>"}, "5", ESH_MATCH_AMBIGUOUS, "INTEGER<1-5> STRING<1-9>"},
      {"no value fits", {"INTEGER<1-5>", "alpha"}, "6", ESH_MATCH_WRONG_PARAM, ""},
      {"wrong value outranks the end", {"INTEGER<1-5>", "<cr>"}, "6", ESH_MATCH_WRONG_PARAM, ""},
      {"the end outranks nothing", {"<cr>", "alpha"}, "x", ESH_MATCH_TOO_MANY, ""},
      {"nothing", {"alpha"}, "x", ESH_MATCH_NONE, ""},
      {"with prefix length", {"X:X::X:X", "X:X::X:X/M"}, "1::/64", ESH_MATCH_PARAM, "X:X::X:X/M"},
      {"without prefix length", {"X:X::X:X", "X:X::X:X/M"}, "1::", ESH_MATCH_PARAM, "X:X::X:X"},
  };
  for (const FilterCase& c : cases) {
    TestView view("<t>");
    view.AddAll(c.commands);
    const UniqueVector candidates(VEC_Alloc(8));
    ESH_SelectNextCmdElment(candidates.get());
    EXPECT_EQ(ESH_FilterCmdElment(candidates.get(), c.word), c.level) << c.why;
    EXPECT_EQ(TextsOf(*candidates), c.left) << c.why;
  }
}

std::uint16_t g_answer;
std::uint16_t Answer(const char* /*word*/) { return g_answer; }

TEST(Filter, TheCheckCallbackHasTheLastWord) {
  struct AnswerCase {
    const char* word;
    const char* left;
    std::uint32_t level;
    std::uint16_t answer;
  };
  constexpr AnswerCase kCases[] = {
      {"3", "INTEGER<1-5>", ESH_MATCH_PARAM, 1},
      {"3", "", ESH_MATCH_WRONG_PARAM, 0},
      {"3", "INTEGER<1-5>", ESH_MATCH_WRONG_PARAM, 2},
      {"6", "", ESH_MATCH_WRONG_PARAM, 1},
  };
  for (const AnswerCase& c : kCases) {
    const TestView view("<t>");
    ESH_CMD_THREAD_S* thread = ESH_CmdThread_Init(nullptr);
    ESH_CmdThread_AddCmdElement(thread, "INTEGER<1-5>", "", nullptr, Answer, nullptr, ESH_ELEM_INTEGER);
    ESH_CmdThread_Reg2View(g_pstEshCurrentView, thread);
    g_answer = c.answer;
    const UniqueVector candidates(VEC_Alloc(8));
    ESH_SelectNextCmdElment(candidates.get());
    EXPECT_EQ(ESH_FilterCmdElment(candidates.get(), c.word), c.level) << c.answer;
    EXPECT_EQ(TextsOf(*candidates), c.left) << c.answer;
  }
}

TEST(SelectNext, StartsWithTheViewAndDropsFinishedCommands) {
  TestView view("<t>");
  view.AddAll({"one two <cr>", "", "one <cr>", "three"});
  const UniqueVector candidates(VEC_Alloc(8));
  ESH_SelectNextCmdElment(candidates.get());
  EXPECT_EQ(TextsOf(*candidates), "one one three") << "a command without words adds nothing";
  ESH_SelectNextCmdElment(candidates.get());
  EXPECT_EQ(TextsOf(*candidates), "two <cr>") << "behind a command without an end stands nothing";
  ESH_SelectNextCmdElment(candidates.get());
  EXPECT_EQ(TextsOf(*candidates), "<cr>");
}

struct CandidateCase {
  const char* line;
  std::uint32_t mode;
  std::uint32_t level;
  std::uint64_t failed;  // meant only below ESH_MATCH_PARAM
  const char* left;
};
constexpr CandidateCase kCandidates[] = {
    {"", ESH_WORD_FINISHED, ESH_MATCH_PARAM, 0, "display display ping set show show show"},
    {"", ESH_WORD_PARTIAL, ESH_MATCH_PARAM, 0, ""},
    {"DIS", ESH_WORD_PARTIAL, ESH_MATCH_PARAM, 0, "display display"},
    {"dis", ESH_WORD_FINISHED, ESH_MATCH_PARTIAL, 0, "version interface"},
    {"display", ESH_WORD_FINISHED, ESH_MATCH_EXACT, 0, "version interface"},
    {"display v", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "version"},
    {"display v", ESH_WORD_FINISHED, ESH_MATCH_PARTIAL, 0, "<cr>"},
    {"x", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 0, ""},
    {"display x", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 1, ""},
    {"display x", ESH_WORD_FINISHED, ESH_MATCH_NONE, 1, ""},
    {"s", ESH_WORD_PARTIAL, ESH_MATCH_PARAM, 0, "set show show show"},
    {"s", ESH_WORD_FINISHED, ESH_MATCH_AMBIGUOUS, 0, "set show show show"},
    {"s 1", ESH_WORD_PARTIAL, ESH_MATCH_AMBIGUOUS, 0, "set show show show"},
    {"ping 1.2.", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "X.X.X.X"},
    {"ping 999", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "X.X.X.X"},
    {"ping 1:", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 1, ""},
    {"ping 1.2.3", ESH_WORD_FINISHED, ESH_MATCH_WRONG_PARAM, 1, ""},
    {"ping 1.2.3.4", ESH_WORD_FINISHED, ESH_MATCH_PARAM, 0, "<cr>"},
    {"ping 1.2.3.4 x", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 2, ""},
    {"ping 1.2.3.4 x", ESH_WORD_FINISHED, ESH_MATCH_TOO_MANY, 2, ""},
    {"set 31", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "INTEGER<10-31>"},
    {"set 1", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 1, ""},
    {"show fe80::1.2", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "X:X::X:X X:X::X:X/M STRING<1-3>"},
    {"show fe80::/6", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "X:X::X:X/M STRING<1-3>"},
    {"show fg", ESH_WORD_PARTIAL, ESH_MATCH_EXACT, 0, "STRING<1-3>"},
    {"show \x7f", ESH_WORD_PARTIAL, ESH_MATCH_NONE, 1, ""},
};

TEST(Candidates, FollowAFinishedWordOrContinueAPartialOne) {
  TestView view("<t>");
  view.AddAll({"display version <cr>", "display interface <cr>", "ping X.X.X.X <cr>", "set INTEGER<10-31> <cr>",
               "show X:X::X:X <cr>", "show X:X::X:X/M <cr>", "show STRING<1-3> <cr>"});
  for (const CandidateCase& c : kCandidates) {
    const UniqueWords words = SplitLine(c.line);
    const UniqueVector candidates(VEC_Alloc(8));
    std::uint64_t failed = 0;
    EXPECT_EQ(ESH_GetCmdElementVec(words.get(), VEC_GetCount(words.get()), c.mode, candidates.get(), &failed), c.level)
        << c.line << c.mode;
    EXPECT_EQ(failed, c.failed) << c.line << c.mode;
    EXPECT_EQ(TextsOf(*candidates), c.left) << c.line << c.mode;
  }
}

}  // namespace
