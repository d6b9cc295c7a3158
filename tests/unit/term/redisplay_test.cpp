#include "term/redisplay.h"

#include <curses.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>

#include "term/history.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/support/console.h"
#include "tests/support/virtual_screen.h"
#include "tests/unit/term/editor_model.h"

namespace {

using End = EditorModel::End;

constexpr char kReady[] = "ready";

/// The child's part: read line after line, as the shell's main loop and its parser do, until one says "exit".
void ReadLines(const EditorModel::Setup& setup, const Console::Report& report) {
  if (setup.width == 0) {
    use_env(FALSE);  // or the library makes up a width where the terminal gives none
  }
  ESH_HIS_Init();
  (void)ESH_LINE_Init();
  ESH_SetPrompt(setup.prompt.c_str());
  report(kReady);
  for (;;) {
    char* line =
        setup.mode == 0 ? ESH_LINE_GetCmdLine() : ESH_LINE_GetLine(setup.mode, static_cast<std::uint32_t>(setup.max));
    report(std::to_string(g_stESh_Line.ulEndKey) + line);
    std::puts("\r");
    if (std::strncmp(line, "exit", 4) == 0) {
      return;
    }
    if (g_stESh_Line.ulEndKey == ESH_LINE_END_TAB || g_stESh_Line.ulEndKey == ESH_LINE_END_HELP) {
      line[std::strcspn(line, "\t?")] = '\0';
      ESH_LINE_SetCmdString();
    }
  }
}

/// Types on a console with the editor behind it and holds everything that arrives against the model.
class Typist {
 public:
  explicit Typist(const EditorModel::Setup& setup)
      : model_(setup),
        console_({setup.term.c_str(), static_cast<unsigned short>(setup.width), 24},
                 [&setup](const Console::Report& report) { ReadLines(setup, report); }) {
    if (setup.width > 0) {
      // So many rows that even a full line does not scroll.
      screen_.emplace(static_cast<int>((setup.prompt.size() + setup.max) / setup.width) + 3,
                      static_cast<int>(setup.width));
    } else {
      screen_.emplace(3, 1000);
    }
    EXPECT_EQ(console_.NextReport(), kReady);  // before that the console itself would echo what is typed
    model_.Start();
    Compare("the prompt");
  }

  [[nodiscard]] const EditorModel& Model() const { return model_; }
  /// Bytes above 127 mean something different to every terminal.
  void IgnoreScreen() { screen_.reset(); }

  void Press(std::string_view key) {
    console_.Type(key);
    model_.Press(key);
    if (model_.EndKey() != End::kNone) {
      EXPECT_EQ(console_.NextReport(), std::to_string(static_cast<int>(model_.EndKey())) + model_.Line());
      model_.GoOn();
    }
    Compare(key);
  }

  void PressEach(std::string_view keys) {
    for (const char& key : keys) {
      Press({&key, 1});
    }
  }

  /// Nothing but what was expected has been written.
  void Leave() {
    Press("\n");
    console_.Type("exit\n");
    EXPECT_EQ(console_.ReadToEnd(), ExpectedOfExit());
  }

 private:
  std::string ExpectedOfExit() {
    for (const char* key : {"e", "x", "i", "t", "\n"}) {
      model_.Press(key);
    }
    return model_.TakeExpected().bytes + "\r\r\n";
  }

  void Compare(std::string_view key) {
    const EditorModel::Expected expected = model_.TakeExpected();
    ASSERT_EQ(console_.Read(expected.bytes.size()), expected.bytes) << Where(key);
    if (screen_) {
      CompareScreen(expected, key);
    }
  }

  void CompareScreen(const EditorModel::Expected& expected, std::string_view key) {
    if (expected.new_line) {
      screen_->Reset();
      lowest_row_ = 0;
    }
    screen_->Write(expected.screen);
    const VirtualScreen::Place cursor{static_cast<int>(model_.CursorRow()), static_cast<int>(model_.CursorColumn())};
    ASSERT_EQ(screen_->Cursor(), cursor) << Where(key) << ", cursor at " << screen_->Cursor().row << ", "
                                         << screen_->Cursor().column;
    lowest_row_ = std::max(lowest_row_, cursor.row + 1);
    for (int row = 0; row <= std::min(lowest_row_, screen_->Rows() - 1); ++row) {
      ASSERT_EQ(screen_->Row(row), model_.ScreenRow(static_cast<std::uint64_t>(row))) << Where(key) << ", row " << row;
    }
  }

  [[nodiscard]] std::string Where(std::string_view key) const {
    return testing::PrintToString(std::string(key)) + " typed, text now " + testing::PrintToString(model_.Text());
  }

  EditorModel model_;
  Console console_;
  std::optional<VirtualScreen> screen_;
  int lowest_row_ = 0;
};

/// Keys as a hasty operator would press them.
class RandomKeys {
 public:
  explicit RandomKeys(unsigned seed) : random_(seed) {}

  /// @param crowded the line is long enough: rather shorten it.
  /// @param highest the highest byte that may be typed.
  std::string Next(bool crowded, int highest) {
    static const std::string kNul(1, '\0');
    static const std::string kEditing[] = {"\001",   "\002",   "\004",   "\005",   "\006",   "\010",
                                           "\177",   "\010",   "\033[C", "\033[D", "\033[D", "\033[3~",
                                           "\033[A", "\033[B", "\003",   "\025",   kNul};
    static const std::string kEnding[] = {"\n", "\r", "\t", "?", "\032"};
    const unsigned dice = Below(crowded ? 70 : 100);
    if (dice < 3) {
      return kEnding[Below(std::size(kEnding))];
    }
    if (crowded && dice < 25) {
      return "\010";
    }
    if (dice < 50) {
      return kEditing[Below(std::size(kEditing))];
    }
    if (dice < 75) {
      return "a";  // in a row of the same letters only the tail is written
    }
    const int byte = ' ' + static_cast<int>(Below(static_cast<unsigned>(highest - ' ' + 1)));
    return std::string(1, static_cast<char>(byte == 127 ? 'b' : byte));
  }

 private:
  unsigned Below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }

  std::mt19937 random_;
};

void TypeAtRandom(Typist& typist, unsigned seed, int keys, std::size_t crowd, int highest) {
  RandomKeys random(seed);
  for (int i = 0; i < keys && !testing::Test::HasFailure(); ++i) {
    typist.Press(random.Next(typist.Model().Text().size() > crowd, highest));
  }
}

struct ScreenCase {
  const char* term;
  unsigned width;
};

std::vector<ScreenCase> Screens() {
  std::vector<ScreenCase> screens = {{"esh-nowidth", 0}, {"esh-zerowidth", 0}, {"esh-steps", 7}};
  for (const char* term : {"xterm", "vt100", "linux"}) {
    for (const unsigned width : {1U, 2U, 3U, 6U, 7U, 8U, 13U, 40U, 80U}) {
      screens.push_back({term, width});
    }
  }
  return screens;
}

class RedisplayTest : public testing::TestWithParam<ScreenCase> {
 protected:
  void SetUp() override { setenv("TERMINFO", ESH_TEST_TERMINFO, 1); }

  [[nodiscard]] EditorModel::Setup SetupFor(const char* prompt, std::uint32_t mode = 0, std::size_t max = 511) const {
    return {GetParam().term, GetParam().width, prompt, mode, max};
  }
};

constexpr const char* kPrompts[] = {"", "<boot>", "[boot-m-eth0]", "0123456789012345678901234567890"};

TEST_P(RedisplayTest, WritesAndShowsWhatTheRulesSay) {
  unsigned seed = GetParam().width * 100;
  for (const char* prompt : kPrompts) {
    SCOPED_TRACE(prompt);
    Typist typist(SetupFor(prompt));
    TypeAtRandom(typist, ++seed, 1000, GetParam().width * 3 + 10, 126);
    if (!HasFailure()) {
      typist.Leave();
    }
  }
}

TEST_P(RedisplayTest, ReadsNamesAndPasswordsAlike) {
  for (const std::uint32_t mode : {1U, 2U}) {
    SCOPED_TRACE(mode);
    Typist typist(SetupFor("password:", mode, 15));
    TypeAtRandom(typist, mode, 400, 15, 126);
    if (!HasFailure()) {
      typist.Leave();
    }
  }
}

TEST_P(RedisplayTest, HoldsExactlyAFullLine) {
  Typist typist(SetupFor("<boot>"));
  typist.PressEach(std::string(255, 'x') + std::string(256, 'y'));
  EXPECT_EQ(typist.Model().Text().size(), 511U);
  typist.PressEach("z?\001z\004z\005?");
  typist.Leave();
}

INSTANTIATE_TEST_SUITE_P(Screens, RedisplayTest, testing::ValuesIn(Screens()), [](const auto& test) {
  std::string name = test.param.term;
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name + std::to_string(test.param.width);
});

/// Each takes 0.1 s or more, until no more of it has come.
constexpr const char* kBrokenSequences[] = {"\033",      "\033[",  "\033[2~", "\033[3",
                                            "\033[3;5~", "\033[E", "\033OA",  "\033[20;1Habc"};

TEST(Redisplay, TakesAnyByteAndRefusesBrokenSequences) {
  Typist typist({"linux", 13, "<boot>"});
  typist.IgnoreScreen();
  for (unsigned seed = 0; const char* broken : kBrokenSequences) {
    TypeAtRandom(typist, ++seed, 500, 40, 255);
    typist.Press(broken);
  }
  typist.Leave();
}

struct ScriptCase {
  const char* term;
  unsigned short columns;
  const char* keys;
  const char* output;
  const char* why;
};

/// The bytes that matter most, spelled out. The prompt is "<boot>".
constexpr ScriptCase kScripts[] = {
    {"xterm", 80, "ab", "ab", "only what is new"},
    {"xterm", 80, "aaa\001a", "aaa\033[3D\033[3Ca\033[3D", "among equal letters only the tail"},
    {"xterm", 80, "ab\002x", "ab\033[1D\033[1D\033[Jaxb\033[1D", "an insertion writes the text anew"},
    {"xterm", 80, "ab\010", "ab\033[1D\033[J", "a cut tail is erased"},
    {"xterm", 80, "ab\001\004", "ab\033[2D\033[Jb\033[1D", "a cut head is not"},
    {"xterm", 8, "ab", "ab\r\r\n", "a filled row is ended at once"},
    {"xterm", 8, "ab\002", "ab\r\r\n\033[1A\033[7C", "left over the margin"},
    {"linux", 8, "ab\002", "ab\r\r\n\033[1A\033[8D\033[7C", "left over the margin, column not trusted"},
    {"linux", 8, "ab\002\006", "ab\r\r\n\033[1A\033[8D\033[7C\033[1B\033[8D\033[0C", "a zero move is asked for"},
    {"xterm", 80, "ab\001\n", "ab\033[2D\033[2C\r\r\n<boot>", "Enter leaves from the end of the line"},
    {"xterm", 80, "ab\002\t", "ab\033[1D\033[1C\r\r\n<boot>a", "TAB does too"},
    {"xterm", 80, "ab\002?", "ab\033[1D\033[1D\033[Ja?b\033[1D\r\r\n<boot>a", "help does not"},
    {"esh-steps", 80, "abc\001\006", "abc\b\b\b\033[C", "single steps where there is no counted move"},
    {"esh-still", 80, "ab\001\002", "ab", "no motion and no bell"},
};

TEST(Redisplay, WritesTheFewestBytes) {
  setenv("TERMINFO", ESH_TEST_TERMINFO, 1);
  for (const ScriptCase& c : kScripts) {
    const EditorModel::Setup setup{c.term, c.columns, "<boot>"};
    const Console console({c.term, c.columns}, [&](const Console::Report& report) { ReadLines(setup, report); });
    EXPECT_EQ(console.ReadUntil("<boot>"), "<boot>");
    console.Type(std::string(c.keys) + "\032");
    const std::string output = std::string(c.output) + "\r\r\n<boot>";
    EXPECT_EQ(console.Read(output.size()), output) << c.why;
  }
}

}  // namespace
