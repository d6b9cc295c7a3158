#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "shell/command/command_tree.h"

/// Commands are written as tables that read like the command reference. An empty word ends a command.

struct CommandWord {
  const char* text = nullptr;  ///< a keyword in lower case, or a placeholder
  const char* help = nullptr;
  std::uint32_t type = ESH_ELEM_KEYWORD;
  ESH_CMD_HELP_F list_values = nullptr;
  ESH_CMD_CHECK_F check = nullptr;
  ESH_CMD_RECORD_F record = nullptr;
};

/// The views in which a command is valid; they can be added up.
enum ViewSet : unsigned { kUserView = 1, kSystemView = 2, kInterfaceView = 4, kAllViews = 7 };

inline constexpr std::size_t kMaxWords = 7;

struct CommandRow {
  ESH_CMD_PROC_F handler;
  unsigned views;
  CommandWord words[kMaxWords + 1];
};

/// A keyword. The texts are not copied.
constexpr CommandWord Word(const char* text, const char* help) { return {.text = text, .help = help}; }

/// A parameter, whose word `record` stores when the command runs.
/// @param check       refuses a word by 0; NULL: its type alone decides.
/// @param list_values adds what could stand there to a help list; NULL: the placeholder is shown.
constexpr CommandWord Param(ESH_ELEM_TYPE_E type, const char* placeholder, const char* help, ESH_CMD_RECORD_F record,
                            ESH_CMD_CHECK_F check = nullptr, ESH_CMD_HELP_F list_values = nullptr) {
  return {
      .text = placeholder, .help = help, .type = type, .list_values = list_values, .check = check, .record = record};
}

/// Commands of several families begin with it, and help, which shows it once, must find one text.
inline constexpr CommandWord kDisplay = Word("display", "Display current system information");

/// Whether a word is what help and completion can tell apart by its spelling: a keyword without capitals, or a
/// placeholder that begins with one, each with a description. Functions are not looked at, here and below: under
/// UBSan, GCC cannot tell at compile time whether one is NULL.
constexpr bool WellFormed(const CommandWord& word) {
  const std::string_view text(word.text);
  if (text.empty() || word.help == nullptr || word.help[0] == '\0') return false;
  if (word.type != ESH_ELEM_KEYWORD) return text[0] >= 'A' && text[0] <= 'Z';
  for (const char c : text)
    if ((c >= 'A' && c <= 'Z') || c == ' ') return false;
  return true;
}

/// Whether a command is valid in some view and has words, all of them well formed, with an empty one behind them.
constexpr bool WellFormed(const CommandRow& row) {
  if (row.views == 0 || row.views > kAllViews || row.words[0].text == nullptr || row.words[kMaxWords].text != nullptr)
    return false;
  for (const CommandWord* word = row.words; word->text != nullptr; ++word)
    if (!WellFormed(*word)) return false;
  return true;
}

/// Whether every command of a table is: a static_assert beside the table asks it.
template <std::size_t kRows>
constexpr bool WellFormed(const CommandRow (&rows)[kRows]) {
  for (const CommandRow& row : rows)
    if (!WellFormed(row)) return false;
  return true;
}

/// Adds the commands to their views, in the order of the table, in which TAB offers them. Out of memory costs a
/// command, not the shell.
void RegisterCommands(std::span<const CommandRow> rows);
