#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "shell/command_tree.h"
#include "shell/parameter.h"
#include "shell/startup.h"
#include "shell/view.h"
#include "shell/view_commands.h"
#include "term/line_editor.h"
#include "tests/support/private_root.h"
#include "util/vector.h"

namespace {

/// All commands of a device, with or without an IP stack.
struct CommandReference : PrivateRootTest, testing::WithParamInterface<bool> {
  void SetUp() override {
    PrivateRootTest::SetUp();
    if (GetParam()) {
      WriteFile("/lib/modules/ipstack.ko", "");
    }
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

  static bool Has(const ESH_VIEW_S& view, const std::string& command) {
    const std::vector<std::string> commands = CommandsOf(view);
    return std::find(commands.begin(), commands.end(), command) != commands.end();
  }
};

INSTANTIATE_TEST_SUITE_P(Device, CommandReference, testing::Bool(), [](const testing::TestParamInfo<bool>& tested) {
  return tested.param ? "WithIpStack" : "WithoutIpStack";
});

bool IsKeyword(const std::string& text) {
  return !text.empty() && std::none_of(text.begin(), text.end(),
                                       [](unsigned char c) { return std::isupper(c) != 0 || std::isspace(c) != 0; });
}

void ExpectWellFormed(const ESH_CMD_ELEMENT_S& word, const std::string& command) {
  EXPECT_STRNE(word.pcHelp, "") << command;
  if (word.ulType == ESH_ELEM_KEYWORD) {
    EXPECT_TRUE(IsKeyword(word.pcKeyWord)) << command;
    EXPECT_TRUE(word.pfnRecord == nullptr && word.pfnCheck == nullptr && word.pfnHelp == nullptr) << command;
    return;
  }
  EXPECT_EQ(ESH_Variable(word.pcKeyWord), 1) << command;
  EXPECT_NE(word.pfnRecord, nullptr) << command << ": its value would be lost";
  if (word.ulType == ESH_ELEM_STRING || word.ulType == ESH_ELEM_INTEGER) {
    EXPECT_GT(word.ulMax, 0U) << command << ": no value would fit";
  }
}

TEST_P(CommandReference, EveryCommandCanBeRunAndExplained) {
  for (const ESH_VIEW_S* view : Views()) {
    ForEachSlot<ESH_CMD_THREAD_S>(*view->pstCmdVec, [&](std::uint64_t index, const ESH_CMD_THREAD_S& thread) {
      const std::string command = view->pcPrompt + CommandsOf(*view)[index];
      const std::vector<const ESH_CMD_ELEMENT_S*> words = WordsOf(thread);
      EXPECT_NE(thread.pfnProc, nullptr) << command;
      ASSERT_GE(words.size(), 2U) << command;
      ASSERT_EQ(words.back()->ulType, ESH_ELEM_CR) << command;
      for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        ASSERT_NE(words[i]->ulType, ESH_ELEM_CR) << command;
        ExpectWellFormed(*words[i], command);
      }
    });
  }
}

TEST_P(CommandReference, NoTwoCommandsOfAViewReadTheSame) {
  for (const ESH_VIEW_S* view : Views()) {
    std::vector<std::string> commands = CommandsOf(*view);
    std::sort(commands.begin(), commands.end());
    const auto twice = std::adjacent_find(commands.begin(), commands.end());
    EXPECT_TRUE(twice == commands.end()) << view->pcPrompt << *twice;
  }
}

TEST_P(CommandReference, OneWordHasOneDescriptionAtItsPlace) {
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

TEST_P(CommandReference, ViewsAreReachedByTheirCommandsOnly) {
  const bool has_ip_stack = GetParam();
  EXPECT_TRUE(Has(*g_pstEshUserView, "system-view <cr>"));
  EXPECT_FALSE(Has(*g_pstEshUserView, "quit <cr>")) << "the shell is not left by a command";
  EXPECT_TRUE(Has(*g_pstEshSysView, "quit <cr>"));
  EXPECT_EQ(Has(*g_pstEshMthView, "quit <cr>"), has_ip_stack);
  EXPECT_EQ(Has(*g_pstEshSysView, "interface m-eth0 <cr>"), has_ip_stack);
  EXPECT_TRUE(Has(*g_pstEshUserView, "reboot <cr>"));
  EXPECT_FALSE(Has(*g_pstEshSysView, "reboot <cr>"));
  EXPECT_FALSE(Has(*g_pstEshMthView, "reboot <cr>"));
}

TEST_P(CommandReference, FileCommandsComeFirst) {
  const std::vector<std::string> expected = {"dir <cr>",
                                             "dir /all <cr>",
                                             "dir STRING<1-511> <cr>",
                                             "dir /all STRING<1-511> <cr>",
                                             "pwd <cr>",
                                             "copy STRING<1-511> STRING<1-511> <cr>",
                                             "delete STRING<1-511> <cr>",
                                             "mkdir STRING<1-511> <cr>",
                                             "rmdir STRING<1-511> <cr>",
                                             "move STRING<1-511> STRING<1-511> <cr>",
                                             "more STRING<1-511> <cr>",
                                             "format STRING<1-15> <cr>"};
  std::vector<std::string> commands = CommandsOf(*g_pstEshUserView);
  ASSERT_GE(commands.size(), expected.size() + 2);
  EXPECT_EQ(std::vector<std::string>(commands.begin(), commands.begin() + static_cast<std::ptrdiff_t>(expected.size())),
            expected);
  EXPECT_EQ(*(commands.end() - 2), "reboot <cr>");
  EXPECT_EQ(commands.back(), "system-view <cr>");
}

TEST_P(CommandReference, QuitStepsBackOneView) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(ESH_ProcSysView(), 0U);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "System View: return to User View with Ctrl+Z\r\n");
  EXPECT_STREQ(ESH_GetPrompt(), "[boot]");
  testing::internal::CaptureStdout();
  EXPECT_EQ(ESH_ProcMthView(), 0U);
  for (const char* prompt : {"[boot-m-eth0]", "[boot]", "<boot>", "<boot>"}) {
    EXPECT_STREQ(ESH_GetPrompt(), prompt);
    EXPECT_STREQ(g_pstEshCurrentView->pcPrompt, prompt);
    EXPECT_EQ(ESH_ProcQuit(), 0U);
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
