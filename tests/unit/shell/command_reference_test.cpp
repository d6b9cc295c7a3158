#include <map>
#include <set>
#include <string>

#include "shell/command/command_tree.h"
#include "shell/command/view.h"
#include "shell/startup.h"
#include "tests/support/private_root.h"
#include "util/vector.h"

namespace {

/// All commands of a device with an IP stack.
struct CommandReference : PrivateRootTest {
  void SetUp() override {
    WriteFile("/lib/modules/ipstack.ko", "");
    ESH_View_Init();
    ESH_CMD_Init();
  }
};

TEST_F(CommandReference, ReadsInOneWay) {
  for (const ESH_VIEW_S* view : {g_pstEshUserView, g_pstEshSysView, g_pstEshMthView}) {
    std::set<std::string> commands;
    std::map<std::string, std::string> descriptions;  // of a word at its place: by all the words up to it
    ForEachSlot<ESH_CMD_THREAD_S>(*view->pstCmdVec, [&](std::uint64_t, const ESH_CMD_THREAD_S& thread) {
      std::string text;
      for (const auto* word = FirstElement(thread); word != nullptr; word = NextElement(thread, *word)) {
        text += std::string(" ") + word->pcKeyWord;
        EXPECT_EQ(descriptions.emplace(text, word->pcHelp).first->second, word->pcHelp) << view->pcPrompt << text;
      }
      EXPECT_TRUE(commands.insert(text).second) << view->pcPrompt << text << " is there twice";
    });
    EXPECT_FALSE(commands.empty());
  }
}

}  // namespace
