#include "term/line_editor.h"

#include <gtest/gtest.h>
#include <vterm.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "term/history.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

using namespace std::string_literals;

constexpr auto kCommand = ESH_LINE_MODE_COMMAND;
constexpr auto kPlain = ESH_LINE_MODE_PLAIN;
constexpr auto kMasked = ESH_LINE_MODE_MASKED;

std::string ReadLine(std::uint32_t mode, std::uint32_t most = 80) {
  return mode == kCommand ? ESH_LINE_GetCmdLine() : ESH_LINE_GetLine(mode, most);
}

const std::string kLong(99, 'x');
const struct {
  const char* why;
  std::string keys;    ///< of the line, behind the lines before it, each ended by "\n"
  std::string line;    ///< as the caller gets it
  std::string output;  ///< behind the prompt
  std::uint32_t mode = kCommand;
  unsigned width = 80;
  const char* term = "xterm";
} kKeys[] = {
    {"taken from inside", "abc\002\177\n", "ac\n", "abc\033[1D\033[2D\033[Jac\033[1D\033[1C"},
    {"of equal letters the last goes from the screen", "aa\001\004\n", "a\n", "aa\033[2D\033[1C\033[J\033[1D\033[1C"},
    {"to both ends and right", "abc\001\006\005\n", "abc\n", "abc\033[3D\033[1C\033[2C"},
    {"arrows and Delete", "abc\033[D\033[D\033[C\033[3~d\n", "abd\n", "abc\033[1D\033[1D\033[1C\033[Jd"},
    {"nothing there to move over or to take", "\002\006\010\177\004\033[C\033[D\033[3~\033[A\033[B\n", "\n",
     std::string(10, '\a')},
    {"other control keys", "a\025\001\037b\003\n", "ba\n", "a\033[1D\033[Jba\033[1D\033[1C"},
    {"TAB cuts behind the cursor", "abc\002\t", "ab\t", "abc\033[1D\033[1C"},
    {"the question mark stays where it is typed", "ac\002?", "a?c", "ac\033[1D\033[1D\033[Ja?c\033[1D"},
    {"up to the oldest and down past the newest", "one\ntwo\n\033[A\033[A\033[A\033[B\033[B\033[B\n", "\n",
     "two\033[3D\033[Jone\a\033[3D\033[Jtwo\033[3D\033[J\a"},
    {"no key of a command line", "a\t\032\033[A\033[Bb?\r", "ab?", "ab?", kPlain},
    {"Ctrl+C", "ab\003", "\003", "ab", kPlain},
    {"over rows that lose the column", "abc\001\005\n", "abc\n", "ab\r\nc\033[1A\033[8D\033[6C\033[1B\033[8D\033[1C",
     kCommand, 8, "linux"},
    {"no rows", kLong + "\002\n", kLong + "\n", kLong + "\033[1D\033[1C", kCommand, 0, "esh-zerowidth"},
    {"single steps instead", "abc\001d\n", "dabc\n", "abc\b\b\b\033[Jdabc\b\b\b\033[C\033[C\033[C", kCommand, 80,
     "esh-steps"},
    {"neither way of moving, and no bell of our own", "abc\001\001\010\n", "abc\n", "abc", kCommand, 80, "esh-still"},
    {"no padding on the screen", "ab\010\n", "a\n", "ab\033[1D\033[J", kCommand, 80, "vt100"},
    {"a row without an end", kLong + "\n", kLong + "\n", kLong, kCommand, 0, "esh-nowidth"},
    {"escape alone", "ab\002\033\0\0\n"s, "ab\n", "ab\033[1D\a\033[1C"},
    {"no such sequence", "ab\002\033[\0\0\033OA\0\0\033[E\0\0\n"s, "ab\n", "ab\033[1D\a\a\a\033[1C"},
    {"Delete cut short or changed", "ab\002\033[3\0\0\033[3;5~\0\0\033[2~\0\0\n"s, "ab\n", "ab\033[1D\a\a\a\033[1C"},
    {"a long sequence and what comes with it", "ab\002\033[20;1Hab\0\0\n"s, "ab\n", "ab\033[1D\a\033[1C"},
};

TEST(LineEditor, ActsOnItsKeysAndWritesTheDifference) {
  for (const auto& c : kKeys) {
    ScriptedEditor editor(c.keys, c.term, c.width);
    ESH_SetPrompt("<boot>");
    const auto ends = static_cast<std::size_t>(std::count(c.keys.begin(), c.keys.end(), '\n'));
    for (std::size_t before = 1; before < ends; ++before) (void)ReadLine(kCommand);
    (void)editor.TakeOutput();
    EXPECT_EQ(ReadLine(c.mode), c.line) << c.why;
    EXPECT_EQ(editor.TakeOutput(), "<boot>" + c.output) << c.why;
  }
}

TEST(LineEditor, RingsTwiceWhenTheLineIsFull) {
  ScriptedEditor editor(std::string(512, 'x') + "\033[D\004yz?\n" + "abcd\r");
  EXPECT_EQ(ReadLine(kCommand), std::string(510, 'x') + "y\n");
  EXPECT_TRUE(editor.TakeOutput().ends_with("y\a\a\a\a"));
  EXPECT_EQ(ReadLine(kPlain, 3), "abc");
}

/// Lines as a hasty operator would type them, each ended by Enter.
std::string RandomLines(unsigned seed, std::size_t lines, std::size_t keys_of_a_line) {
  static const char* const kEditing[] = {"\001", "\002",   "\004",   "\005",   "\006",   "\010",   "\177",
                                         "\025", "\033[A", "\033[B", "\033[C", "\033[D", "\033[D", "\033[3~"};
  std::mt19937 random(seed);
  std::string keys;
  for (; lines > 0; --lines) {
    for (std::size_t key = random() % (2 * keys_of_a_line); key > 0; --key) {
      const auto dice = random() % 35;
      if (dice < std::size(kEditing))
        keys += kEditing[dice];
      else  // in a row of equal letters only the tail is written
        keys += dice < 21 ? 'a' : static_cast<char>('@' + random() % 63);
    }
    keys += "\n";
  }
  return keys;
}

/// What an operator would see, and where the cursor stands, counted from 0.
struct VirtualScreen {
  std::string text;
  VTermPos cursor;
};

/// The screen of a terminal that was empty and has obeyed these bytes (libvterm, an ECMA-48 terminal with automatic
/// margins).
VirtualScreen ScreenAfter(std::string_view bytes, int rows, int columns) {
  const std::unique_ptr<VTerm, decltype(&vterm_free)> terminal(vterm_new(rows, columns), vterm_free);
  VTermScreen* screen = vterm_obtain_screen(terminal.get());
  vterm_screen_reset(screen, 1);
  vterm_input_write(terminal.get(), bytes.data(), bytes.size());
  std::string text(static_cast<std::size_t>(rows * (columns + 1)) * 4, '\0');
  text.resize(vterm_screen_get_text(screen, text.data(), text.size(), {0, rows, 0, columns}));
  VTermPos cursor{};
  vterm_state_get_cursorpos(vterm_obtain_state(terminal.get()), &cursor);
  return {text, cursor};
}

/// Holds the screen, on which the editor has drawn many differences, against one that shows the line straight away.
void ExpectScreens(std::uint32_t mode, const std::string& prompt, int columns, unsigned seed) {
  constexpr int kLines = 8;
  ScriptedEditor editor(RandomLines(seed, kLines, static_cast<std::size_t>(columns) * 4 + 20), "xterm",
                        static_cast<unsigned>(columns));
  ESH_SetPrompt(prompt.c_str());
  const int rows = 600 / columns + 3;
  for (int line = 0; line < kLines; ++line) {
    std::string shown = ReadLine(mode, 511);
    std::erase(shown, '\n');
    if (mode == kMasked) shown.assign(shown.size(), '*');
    const VirtualScreen written = ScreenAfter(editor.TakeOutput(), rows, columns);
    ASSERT_EQ(written.text, ScreenAfter(prompt + shown, rows, columns).text);
    const int offset = static_cast<int>(prompt.size() + g_stESh_Line.ulCursor);
    // Behind a prompt that fills its row the cursor may still hang in the last column.
    ASSERT_TRUE((written.cursor.row == offset / columns && written.cursor.col == offset % columns) || shown.empty());
  }
}

TEST(LineEditor, ShowsTheLineWhereverTheScreenWraps) {
  unsigned seed = 0;
  for (const int columns : {1, 2, 6, 7, 13, 80}) {
    for (const char* prompt : {"", "<boot>", "[boot-m-eth0]", "0123456789012345678901234567890"}) {
      for (const std::uint32_t mode : {kCommand, kPlain, kMasked}) {
        SCOPED_TRACE(std::to_string(columns) + prompt + std::to_string(mode));
        ExpectScreens(mode, prompt, columns, ++seed);
      }
    }
  }
}

TEST(History, KeepsTenLinesAndNoRemarkOrRepetition) {
  const ScriptedEditor editor;
  for (const char* line : {"0", "1", "2", "2", " # 3", "  !", "   ", "3", "2", "A", "a", "\t", "a!", "  6", "7"})
    ESH_HIS_Add(line);
  std::string recalled;
  for (char buffer[3]; ESH_HIS_ArrowUp(sizeof(buffer), buffer) == 1;) recalled += buffer + "|"s;
  EXPECT_EQ(recalled, "7|  |a!|\t|a|A|2|3|2|1|") << "each cut to the buffer";
}

}  // namespace
