#include "tests/support/test_view.h"

#include <array>
#include <deque>
#include <sstream>
#include <utility>
#include <vector>

#include "util/vector.h"

namespace {

constexpr std::size_t kMaxCommands = 32;

std::deque<std::string> g_texts;  // the elements keep pointers into them
std::vector<std::string> g_commands;
std::vector<ESH_CMD_THREAD_S*> g_threads;  // of them; a view does not take every one
std::string g_ran;

template <std::size_t kIndex>
std::uint32_t Handler() {
  g_ran += g_commands[kIndex] + "\n";
  return 0;
}

template <std::size_t... kIndexes>
constexpr std::array<ESH_CMD_PROC_F, sizeof...(kIndexes)> MakeHandlers(std::index_sequence<kIndexes...>) {
  return {Handler<kIndexes>...};
}
constexpr auto kHandlers = MakeHandlers(std::make_index_sequence<kMaxCommands>());

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

void FreeCommand(ESH_CMD_THREAD_S* thread) {
  for (ESH_CMD_LINK_S* link = thread->pstNext; link != thread;) {
    auto* element = static_cast<ESH_CMD_ELEMENT_S*>(link);
    link = link->pstNext;
    delete element;
  }
  delete thread;
}

}  // namespace

TestView::TestView(const char* prompt, std::initializer_list<const char*> commands) : before_(g_pstEshCurrentView) {
  g_texts.clear();
  g_commands.clear();
  g_ran.clear();
  g_pstEshCurrentView = ViewInfoAlloc(prompt);
  for (const char* command : commands) Add(command);
}

TestView::~TestView() {
  for (ESH_CMD_THREAD_S* thread : std::exchange(g_threads, {})) FreeCommand(thread);
  VEC_Free(g_pstEshCurrentView->pstCmdVec);
  delete std::exchange(g_pstEshCurrentView, before_);
}

void TestView::Add(const std::string& words, const TestCallbacks& callbacks) {
  ESH_CMD_THREAD_S* thread = ESH_CmdThread_Init(kHandlers.at(g_commands.size()));
  g_commands.push_back(words);
  g_threads.push_back(thread);
  const auto* record = callbacks.records.begin();
  std::istringstream stream(words);
  for (std::string word; stream >> word;) {
    const std::uint32_t type = TypeOfWord(word);
    const char* text = g_texts.emplace_back(word).c_str();
    if (type == ESH_ELEM_CR) {
      ESH_CmdThread_AddCr(thread);
    } else if (type == ESH_ELEM_KEYWORD) {
      ESH_CmdThread_AddCmdElement(thread, text, "What it is", nullptr, nullptr, nullptr, type);
    } else {
      ESH_CmdThread_AddCmdElement(thread, text, "What it is", callbacks.help, callbacks.check,
                                  record == callbacks.records.end() ? nullptr : *record++, type);
    }
  }
  ESH_CmdThread_Reg2View(g_pstEshCurrentView, thread);
}

std::string TestView::TakeRan() { return std::exchange(g_ran, ""); }
