#include "tests/support/test_view.h"

#include <stdio_ext.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <utility>
#include <vector>

namespace {

std::vector<std::string> g_commands;
std::vector<void*>& g_kept = *new std::vector<void*>;  // views, their commands and the words, which nobody frees
std::string g_ran;

constexpr auto kHandlers = []<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
  return std::array<ESH_CMD_PROC_F, sizeof...(kIndexes)>{[] {
    g_ran += g_commands[kIndexes] + (__fpending(stdout) == 0 ? "\n" : " before its line ended\n");
    return 0U;
  }...};
}
(std::make_index_sequence<32>());

/// What the words of the tests begin with that are no keywords, the longer beginning first.
constexpr std::pair<const char*, std::uint32_t> kPlaceholders[] = {
    {"<cr>", ESH_ELEM_CR},       {"X.X.X.X", ESH_ELEM_IPV4},    {"X:X::X:X/M", ESH_ELEM_IPV6PREFIX},
    {"X:X::X:X", ESH_ELEM_IPV6}, {"INTEGER", ESH_ELEM_INTEGER}, {"STRING", ESH_ELEM_STRING},
};

std::uint32_t TypeOfWord(const std::string& word) {
  for (const auto& [beginning, type] : kPlaceholders)
    if (word.starts_with(beginning)) return type;
  return ESH_ELEM_KEYWORD;
}

}  // namespace

TestView::TestView(const char* prompt, std::initializer_list<const char*> commands) : before_(g_pstEshCurrentView) {
  g_commands.clear();
  g_ran.clear();
  g_pstEshCurrentView = ViewInfoAlloc(prompt);
  for (const char* command : commands) Add(command);
}

TestView::~TestView() { g_kept.push_back(std::exchange(g_pstEshCurrentView, before_)); }

void TestView::Add(const std::string& words, ESH_CMD_HELP_F help, ESH_CMD_CHECK_F check) {
  ESH_CMD_THREAD_S* thread = ESH_CmdThread_Init(kHandlers.at(g_commands.size()));
  g_commands.push_back(words);
  g_kept.push_back(thread);
  std::istringstream stream(words);
  for (std::string word; stream >> word;) {
    const std::uint32_t type = TypeOfWord(word);
    char* text = strdup(word.c_str());
    g_kept.push_back(text);
    if (type == ESH_ELEM_CR)
      ESH_CmdThread_AddCr(thread);
    else
      ESH_CmdThread_AddCmdElement(thread, text, "What it is", type == ESH_ELEM_KEYWORD ? nullptr : help, check, nullptr,
                                  type);
  }
  ESH_CmdThread_Reg2View(g_pstEshCurrentView, thread);
}

std::string TestView::TakeRan() { return std::exchange(g_ran, ""); }
