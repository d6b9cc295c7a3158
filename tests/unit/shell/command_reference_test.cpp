#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "shell/command_tree.h"
#include "shell/startup.h"
#include "shell/view.h"
#include "term/line_editor.h"
#include "tests/support/private_root.h"
#include "util/vector.h"

namespace {

/// All commands of a device with an IP stack.
struct CommandReference : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    WriteFile("/lib/modules/ipstack.ko", "");
    setenv("TERM", "vt100", 1);
    ASSERT_EQ(ESH_LINE_Init(), 0U);
    ESH_View_Init();
    ESH_CMD_Init();
  }
  void TearDown() override { ESH_LINE_Exit(); }

  static std::vector<const ESH_VIEW_S*> Views() { return {g_pstEshUserView, g_pstEshSysView, g_pstEshMthView}; }

  static std::vector<const ESH_CMD_ELEMENT_S*> WordsOf(const ESH_CMD_THREAD_S& thread) {
    std::vector<const ESH_CMD_ELEMENT_S*> words;
    for (const auto* word = FirstElement(thread); word != nullptr; word = NextElement(thread, *word)) {
      words.push_back(word);
    }
    return words;
  }

  /// The commands of a view as they read, in their order.
  static std::vector<std::string> CommandsOf(const ESH_VIEW_S& view) {
    std::vector<std::string> commands;
    ForEachSlot<ESH_CMD_THREAD_S>(*view.pstCmdVec, [&](std::uint64_t, const ESH_CMD_THREAD_S& thread) {
      std::string text;
      for (const ESH_CMD_ELEMENT_S* word : WordsOf(thread)) {
        text += std::string(text.empty() ? "" : " ") + word->pcKeyWord;
      }
      commands.push_back(text);
    });
    return commands;
  }
};

TEST_F(CommandReference, NoTwoCommandsOfAViewReadTheSame) {
  for (const ESH_VIEW_S* view : Views()) {
    std::vector<std::string> commands = CommandsOf(*view);
    std::sort(commands.begin(), commands.end());
    const auto twice = std::adjacent_find(commands.begin(), commands.end());
    EXPECT_TRUE(twice == commands.end()) << view->pcPrompt << *twice;
  }
}

TEST_F(CommandReference, OneWordHasOneDescriptionAtItsPlace) {
  for (const ESH_VIEW_S* view : Views()) {
    std::map<std::string, std::string> descriptions;  // by what stands before the word and the word itself
    ForEachSlot<ESH_CMD_THREAD_S>(*view->pstCmdVec, [&](std::uint64_t, const ESH_CMD_THREAD_S& thread) {
      std::string place;
      for (const ESH_CMD_ELEMENT_S* word : WordsOf(thread)) {
        place += std::string(" ") + word->pcKeyWord;
        EXPECT_EQ(descriptions.emplace(place, word->pcHelp).first->second, word->pcHelp) << view->pcPrompt << place;
      }
    });
  }
}

}  // namespace
