#include "term/help/help.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "shell/command/command_tree.h"
#include "shell/command/match.h"
#include "shell/command/match_error.h"
#include "shell/command/words.h"
#include "term/help/help_list.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"
#include "util/vector.h"

namespace {

constexpr char kNewWord[] = "?";
constexpr char kUserHeading[] = "User view commands:\r";
constexpr char kSystemHeading[] = "System view commands:\r";
constexpr char kOtherHeading[] = "M-th view commands:\r";

constexpr std::size_t kScreenWidth = 80;  // fixed: the same listing on every terminal

/// Collects output in a buffer and prints it when the next piece would not fit.
class HelpOutput {
 public:
  explicit HelpOutput(char* buffer) : buffer_(buffer) { buffer_[0] = '\0'; }

  /// Adds a piece whose parts stay together.
  void Add(std::initializer_list<std::string_view> parts) {
    std::size_t size = 0;
    for (const std::string_view part : parts) size += part.size();
    if (length_ + size > kHelpOutputRoom - 1) Print();
    for (const std::string_view part : parts) {
      CopyBounded(buffer_ + length_, kHelpOutputRoom - length_, part);
      length_ += part.size();
    }
  }

 private:
  void Print() {
    std::printf("%s", buffer_);
    buffer_[0] = '\0';
    length_ = 0;
  }

  char* buffer_;
  std::size_t length_ = 0;
};

/// How a keyword's length counts for the description column. At the screen's edge the arithmetic wraps round.
struct KeywordWidth {
  explicit KeywordWidth(const char* keyword) : indented((std::strlen(keyword) + 2) % kScreenWidth) {}

  [[nodiscard]] std::size_t Column() const {
    if (indented == kScreenWidth - 2 || indented == 0) return 2;
    return indented == kScreenWidth - 1 ? 1 : indented;
  }

  /// Blanks between the keyword and its description, given the widest keyword's column.
  [[nodiscard]] std::size_t Padding(std::size_t widest) const {
    return indented >= kScreenWidth - 2 ? widest + 4 - (indented + 2) % kScreenWidth : widest + 2 - indented;
  }

  std::size_t indented;
};

std::size_t WidestColumn(const VEC_S& list) {
  std::size_t widest = 0;
  ForEachSlot<ESH_HELP_INFO_S>(list, [&](std::uint64_t, const ESH_HELP_INFO_S& line) {
    widest = std::max(widest, KeywordWidth(line.szKeyWord).Column());
  });
  return widest;
}

std::string_view SkipBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text;
}

/// The piece of a description that goes into one row: up to the last blank that fits, that blank included.
std::string_view FirstRow(std::string_view rest, std::size_t room) {
  if (rest.size() <= room || rest[room] == ' ') return rest.substr(0, room);
  const std::size_t blank = rest.substr(0, room).rfind(' ');
  return rest.substr(0, blank == std::string_view::npos ? room : blank + 1);
}

void AddWholeLine(const ESH_HELP_INFO_S& line, std::size_t widest, HelpOutput& output) {
  const std::size_t column = widest + 2;
  const std::size_t room = kScreenWidth - column;
  FixedText<kHelpRoom> row;
  row.AppendText("  ");
  row.AppendText(line.szKeyWord);
  row.AppendRepeated(' ', KeywordWidth(line.szKeyWord).Padding(widest));
  std::string_view rest = SkipBlanks(line.szHelp);
  for (;;) {
    const std::string_view piece = FirstRow(rest, room);
    row.AppendText(piece);
    output.Add({row.View()});
    output.Add({"\r\n"});
    if (piece.size() == rest.size()) return;
    rest = SkipBlanks(rest.substr(piece.size()));
    row.Clear();
    row.AppendRepeated(' ', column);
  }
}

void PrintNames(const VEC_S& list, HelpOutput& output) {
  ForEachSlot<ESH_HELP_INFO_S>(
      list,
      [&](std::uint64_t, const ESH_HELP_INFO_S& line) {
        output.Add({"  ", line.szKeyWord, "\r\n"});
      });
}

void PrintHeading() {
  if (g_pstEshCurrentView == g_pstEshUserView)
    std::puts(kUserHeading);
  else if (g_pstEshCurrentView == g_pstEshSysView)
    std::puts(kSystemHeading);
  else
    std::puts(kOtherHeading);
}

}  // namespace

void ESH_Help(const VEC_S* words, std::uint16_t atNewWord) {
  const UniqueVector candidates(VEC_Alloc(kUsualSlots));
  if (candidates == nullptr) return;
  const std::uint64_t count = VEC_GetCount(words);
  const std::uint32_t mode = atNewWord == 1 ? ESH_WORD_FINISHED : ESH_WORD_PARTIAL;
  std::uint64_t failed = 0;
  const std::uint32_t level = ESH_GetCmdElementVec(words, count, mode, candidates.get(), &failed);
  if (level < ESH_MATCH_PARAM) {
    ESH_PrintErrorInfo(level, failed, words);
    return;
  }
  const bool has_word = mode == ESH_WORD_PARTIAL && count > 0;
  const UniqueHelpList list(
      ESH_MakeHelpInfoVec(has_word ? WordAt(*words, count - 1)->pcWord : kNewWord, candidates.get()));
  if (mode == ESH_WORD_FINISHED && count == 0) PrintHeading();
  PrintHelpVec(list.get(), atNewWord);
}

void PrintHelpVec(VEC_S* list, std::uint16_t whole) {
  const std::uint64_t count = VEC_GetCount(list);
  if (count == 0) return;
  const UniqueText output(static_cast<char*>(std::malloc(kHelpOutputRoom)));
  if (output == nullptr) return;
  QuickSortStrVec(list, 0, static_cast<std::int64_t>(count) - 1);
  if (whole == 1) {
    PrintWholeHelp(list, output.get());
  } else {
    HelpOutput names(output.get());
    PrintNames(*list, names);
  }
  std::printf("%s", output.get());
  std::puts("\r");
}

void PrintWholeHelp(const VEC_S* list, char* output) {
  HelpOutput lines(output);
  const std::size_t widest = WidestColumn(*list);
  ForEachSlot<ESH_HELP_INFO_S>(*list,
                               [&](std::uint64_t, const ESH_HELP_INFO_S& line) { AddWholeLine(line, widest, lines); });
}
