#include "term/redisplay.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "term/line_editor.h"
#include "tests/support/virtual_screen.h"
#include "tests/unit/term/editor_model.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

using Keys = std::vector<std::string>;

/// Keys as a hasty operator would press them.
/// @param line_length how many of them make a line on average.
/// @param highest the highest byte that may be typed.
Keys RandomKeys(unsigned seed, std::size_t line_length, unsigned highest = 126) {
  static const std::string kEnding[] = {"\n", "\r", "\t", "?", "\032"};
  static const std::string kEditing[] = {"\001", "\002",   "\003",   "\004",   "\005",   "\006",   "\010",   "\177",
                                         "\025", "\033[A", "\033[B", "\033[C", "\033[D", "\033[D", "\033[3~"};
  std::mt19937 random(seed);
  Keys keys(1000);
  for (std::string& key : keys) {
    const auto dice = random() % 100;
    const auto letter = static_cast<char>(' ' + random() % (highest - ' ' + 1));
    if (random() % line_length == 0)
      key = kEnding[random() % std::size(kEnding)];
    else if (dice < 40)
      key = kEditing[random() % std::size(kEditing)];
    else
      key = dice < 60 || letter == '\177' ? 'a' : letter;  // in a row of equal letters only the tail is written
  }
  return keys;
}

/// What a terminal shows that does as it is told.
class Screens {
 public:
  explicit Screens(const EditorModel::Setup& setup)
      : columns_(setup.width == 0 ? 1000 : static_cast<int>(setup.width)),
        written_(static_cast<int>(setup.prompt.size() + setup.max) / columns_ + 3, columns_),
        expected_(written_.Rows(), columns_) {}

  /// The operator must see what writing the whole line straight away would show.
  void Compare(const std::string& output, const EditorModel& model) {
    written_.Reset();
    written_.Write(output);
    expected_.Reset();
    expected_.Write(model.Shown());
    ASSERT_EQ(written_.Text(), expected_.Text());
    const int offset = static_cast<int>(model.CursorOffset());
    const VirtualScreen::Place cursor{offset / columns_, offset % columns_};
    // Behind a prompt that fills its row the cursor may still hang in the last column.
    ASSERT_TRUE(written_.Cursor() == cursor || model.Shown().size() == model.CursorOffset());
  }

 private:
  int columns_;
  VirtualScreen written_;
  VirtualScreen expected_;
};

/// Has the editor read line after line, as the shell's main loop and its parser do, and holds what it writes against
/// the model.
void ReadLines(const EditorModel::Setup& setup, Keys keys) {
  keys.insert(keys.end(), 20, "\n");  // an editor that has missed an end shall find one
  ScriptedEditor editor(std::accumulate(keys.begin(), keys.end(), std::string()), setup.term.c_str(),
                        static_cast<unsigned>(setup.width));
  ESH_SetPrompt(setup.prompt.c_str());
  EditorModel model(setup);
  Screens screens(setup);
  model.Start();
  for (auto key = keys.begin(); key != keys.end() && !testing::Test::HasFailure();) {
    std::string pressed;
    while (model.EndKey() == ESH_LINE_END_NONE) {
      pressed += *key;
      model.Press(*key++);
    }
    SCOPED_TRACE(testing::PrintToString(pressed));
    char* line = setup.mode == ESH_LINE_MODE_COMMAND
                     ? ESH_LINE_GetCmdLine()
                     : ESH_LINE_GetLine(setup.mode, static_cast<std::uint32_t>(setup.max));
    const std::string output = editor.TakeOutput();
    EXPECT_EQ(line, model.Line());
    EXPECT_EQ(g_stESh_Line.ulEndKey, model.EndKey());
    ASSERT_EQ(output, model.TakeOutput());
    // It takes a move by 0 columns as one by 1, and the bytes are meant that way.
    if (setup.term != "linux") screens.Compare(output, model);
    if (model.EndKey() == ESH_LINE_END_TAB || model.EndKey() == ESH_LINE_END_HELP) {
      line[std::strcspn(line, "\t?")] = '\0';
      ESH_LINE_SetCmdString();
      model.Start(line);
    } else {
      model.Start();
    }
  }
}

struct Terminal {
  const char* term;
  unsigned width;
};

constexpr Terminal kTerminals[] = {
    {"xterm", 1}, {"xterm", 2}, {"xterm", 6}, {"xterm", 7},  {"xterm", 13},      {"xterm", 80},
    {"vt100", 8}, {"linux", 1}, {"linux", 3}, {"linux", 80}, {"esh-nowidth", 0}, {"esh-zerowidth", 0},
};

constexpr const char* kPrompts[] = {"", "<boot>", "[boot-m-eth0]", "0123456789012345678901234567890"};

TEST(Redisplay, WritesAndShowsWhatTheRulesSay) {
  for (unsigned seed = 1; const auto& [term, width] : kTerminals) {
    SCOPED_TRACE(std::string(term) + std::to_string(width));
    for (const char* prompt : kPrompts) ReadLines({term, width, prompt}, RandomKeys(++seed, width * 5 + 20));
    for (const ESH_LINE_MODE_E mode : {ESH_LINE_MODE_PLAIN, ESH_LINE_MODE_MASKED})
      ReadLines({term, width, "password:", mode, 15}, RandomKeys(++seed, 40));
  }
}

TEST(Redisplay, HoldsExactlyAFullLine) {
  Keys keys(511, "x");
  for (const char* key : {"z", "?", "\001", "z", "\004", "z", "\005", "?", "z", "\010", "?"}) keys.emplace_back(key);
  ReadLines({"xterm", 13}, keys);
}

TEST(Redisplay, TakesAnyByte) { ReadLines({"linux", 13}, RandomKeys(1, 60, 255)); }

TEST(Redisplay, RefusesBrokenSequences) {
  const std::string quiet(2, '\0');  // as if nothing came for a while
  Keys keys;
  for (const char* broken : {"\033", "\033[", "\033[2~", "\033[3", "\033[3;5~", "\033[E", "\033OA", "\033[20;1Habc"})
    keys.insert(keys.end(), {"a", "b", "\002", broken, quiet});
  ReadLines({"xterm", 80}, keys);
}

}  // namespace
