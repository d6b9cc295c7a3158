#include "term/redisplay.h"

#include <curses.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "term/history.h"
#include "term/line_editor.h"
#include "tests/support/console.h"
#include "tests/support/virtual_screen.h"
#include "tests/unit/term/editor_model.h"

namespace {

constexpr char kReady[] = "ready";

bool GoesOn(std::uint32_t end_key) { return end_key == ESH_LINE_END_TAB || end_key == ESH_LINE_END_HELP; }

/// The child's part: read line after line, as the shell's main loop and its parser do.
void ReadLines(const EditorModel::Setup& setup, const Console::Report& report) {
  if (setup.width == 0) {
    use_env(FALSE);  // or the library makes up a width where the terminal gives none
  }
  ESH_HIS_Init();
  (void)ESH_LINE_Init();
  ESH_SetPrompt(setup.prompt.c_str());
  report(kReady);
  for (;;) {
    char* line = setup.mode == ESH_LINE_MODE_COMMAND
                     ? ESH_LINE_GetCmdLine()
                     : ESH_LINE_GetLine(setup.mode, static_cast<std::uint32_t>(setup.max));
    report(std::to_string(g_stESh_Line.ulEndKey) + line);
    std::puts("\r");
    if (GoesOn(g_stESh_Line.ulEndKey)) {
      line[std::strcspn(line, "\t?")] = '\0';
      ESH_LINE_SetCmdString();
    }
  }
}

/// Types on a console with the editor behind it and holds everything that arrives against the model.
class Typist {
 public:
  explicit Typist(const EditorModel::Setup& setup)
      : setup_(setup),
        model_(setup),
        console_({setup.term.c_str(), static_cast<unsigned short>(setup.width), 24},
                 [&setup](const Console::Report& report) { ReadLines(setup, report); }),
        columns_(setup.width == 0 ? 1000 : static_cast<int>(setup.width)),
        screen_(static_cast<int>(setup.prompt.size() + setup.max) / columns_ + 3, columns_),
        plain_(screen_.Rows(), columns_) {
    EXPECT_EQ(console_.NextReport(), kReady);  // before that the console itself would echo what is typed
    Start({}, "the prompt");
  }

  [[nodiscard]] const EditorModel& Model() const { return model_; }
  /// For bytes above 127, which mean something different to every terminal.
  void IgnoreScreen() { obeyed_ = false; }

  void Press(std::string_view key) {
    console_.Type(key);
    model_.Press(key);
    CompareBytes(key);
    if (model_.EndKey() == ESH_LINE_END_NONE) {
      CompareScreen(key);
      return;
    }
    EXPECT_EQ(console_.NextReport(), std::to_string(model_.EndKey()) + model_.Line());
    EXPECT_EQ(console_.Read(3), "\r\r\n");
    Start(GoesOn(model_.EndKey()) ? model_.Line().substr(0, model_.Line().find_first_of("\t?")) : "", key);
  }

  void PressEach(const std::string& keys) {
    for (const char key : keys) {
      Press({&key, 1});
    }
  }

 private:
  void Start(const std::string& text, std::string_view key) {
    screen_.Reset();
    model_.Start(text);
    CompareBytes(key);
    CompareScreen(key);
  }

  void CompareBytes(std::string_view key) {
    const std::string expected = model_.TakeOutput();
    ASSERT_EQ(console_.Read(expected.size()), expected) << Where(key);
    screen_.Write(expected);
  }

  /// The operator must see what writing the line straight away would show.
  void CompareScreen(std::string_view key) {
    if (!obeyed_) {
      return;
    }
    plain_.Reset();
    plain_.Write(model_.Shown());
    ASSERT_EQ(screen_.Text(), plain_.Text()) << Where(key);
    const int offset = static_cast<int>(model_.CursorOffset());
    const VirtualScreen::Place cursor{offset / columns_, offset % columns_};
    // Behind a prompt that fills its row the cursor may still hang in the last column.
    ASSERT_TRUE(screen_.Cursor() == cursor || model_.Text().empty()) << Where(key);
  }

  [[nodiscard]] std::string Where(std::string_view key) const {
    return testing::PrintToString(std::string(key)) + " typed, text now " + testing::PrintToString(model_.Text());
  }

  EditorModel::Setup setup_;
  EditorModel model_;
  Console console_;
  int columns_;
  VirtualScreen screen_;
  VirtualScreen plain_;
  // The one takes a move by 0 columns as one by 1, and the bytes are meant that way; the other takes no moves.
  bool obeyed_ = setup_.term != "linux" && setup_.term != "esh-still";
};

/// A key as a hasty operator would press it.
/// @param crowded the line is long enough: rather shorten it.
/// @param highest the highest byte that may be typed.
std::string RandomKey(std::mt19937& random, bool crowded, unsigned highest) {
  static const std::string kEnding[] = {"\n", "\r", "\t", "?", "\032"};
  static const std::string kEditing[] = {"\001",   "\002",   "\004",   "\005",    "\006",   "\010",   "\177", "\033[C",
                                         "\033[D", "\033[D", "\033[D", "\033[3~", "\033[A", "\033[B", "\003", "\025"};
  const auto dice = random() % (crowded ? 70 : 100);
  if (dice < 3) {
    return kEnding[random() % std::size(kEnding)];
  }
  if (crowded && dice < 25) {
    return "\010";
  }
  if (dice < 50) {
    return kEditing[random() % std::size(kEditing)];
  }
  if (dice < 75) {
    return "a";  // in a row of the same letters only the tail is written
  }
  const unsigned byte = ' ' + static_cast<unsigned>(random()) % (highest - ' ' + 1);
  return std::string(1, static_cast<char>(byte == 127 ? 'b' : byte));
}

void TypeAtRandom(Typist& typist, unsigned seed, int keys, std::size_t crowd, unsigned highest = 126) {
  std::mt19937 random(seed);
  for (int i = 0; i < keys && !testing::Test::HasFailure(); ++i) {
    typist.Press(RandomKey(random, typist.Model().Text().size() > crowd, highest));
  }
}

struct Screen {
  const char* term;
  unsigned width;
};

constexpr Screen kScreens[] = {
    {"xterm", 1},  {"xterm", 2},     {"xterm", 6},     {"xterm", 7},       {"xterm", 13},
    {"xterm", 80}, {"vt100", 8},     {"linux", 1},     {"linux", 3},       {"linux", 7},
    {"linux", 80}, {"esh-steps", 7}, {"esh-still", 7}, {"esh-nowidth", 0}, {"esh-zerowidth", 0},
};

struct RedisplayTest : testing::TestWithParam<Screen> {
  void SetUp() override { setenv("TERMINFO", ESH_TEST_TERMINFO, 1); }
};

TEST_P(RedisplayTest, WritesAndShowsWhatTheRulesSay) {
  const auto [term, width] = GetParam();
  for (unsigned seed = width; const char* prompt : {"", "<boot>", "[boot-m-eth0]", "0123456789012345678901234567890"}) {
    SCOPED_TRACE(prompt);
    Typist typist({term, width, prompt});
    TypeAtRandom(typist, ++seed, 700, width * 3 + 10);
  }
}

TEST_P(RedisplayTest, ReadsNamesAndPasswordsAlike) {
  const auto [term, width] = GetParam();
  for (const ESH_LINE_MODE_E mode : {ESH_LINE_MODE_PLAIN, ESH_LINE_MODE_MASKED}) {
    SCOPED_TRACE(mode);
    Typist typist({term, width, "password:", mode, 15});
    TypeAtRandom(typist, mode, 400, 15);
  }
}

INSTANTIATE_TEST_SUITE_P(Screens, RedisplayTest, testing::ValuesIn(kScreens));

TEST(Redisplay, HoldsExactlyAFullLine) {
  Typist typist({"xterm", 13});
  typist.PressEach(std::string(255, 'x') + std::string(256, 'y'));
  EXPECT_EQ(typist.Model().Text().size(), 511U);
  typist.PressEach("z?\001z\004z\005?");
}

TEST(Redisplay, TakesAnyByteAndRefusesBrokenSequences) {
  Typist typist({"xterm", 13});
  typist.IgnoreScreen();
  // Each takes 0.1 s or more, until no more of it has come.
  for (unsigned seed = 0;
       const char* broken : {"\033", "\033[", "\033[2~", "\033[3", "\033[3;5~", "\033[E", "\033OA", "\033[20;1Habc"}) {
    TypeAtRandom(typist, ++seed, 300, 40, 255);
    typist.Press(broken);
    typist.Press({"\0", 1});
  }
}

}  // namespace
