#include "term/redisplay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "term/line_state.h"
#include "term/terminal.h"

namespace {

struct ScreenPlace {
  std::uint64_t row;  ///< counted from the prompt's
  std::uint64_t column;
};

ScreenPlace PlaceOf(std::uint64_t position, std::uint64_t width) {
  const std::uint64_t offset = position + g_stESh_Line.ulPromptLen;
  return width == 0 ? ScreenPlace{0, offset} : ScreenPlace{offset / width, offset % width};
}

/// The kernel's console loses the column in a vertical move.
bool ColumnIsLostInVerticalMove() {
  const char* type = std::getenv("TERM");
  return type != nullptr && std::strcmp(type, "linux") == 0;
}

void MoveColumn(std::uint64_t from, std::uint64_t to) {
  if (from > to)
    ESH_TERM_CursorBack(from - to);
  else if (from < to)
    ESH_TERM_CursorForward(to - from);
}

void MoveRow(std::uint64_t from, std::uint64_t to) {
  if (from > to)
    ESH_TERM_CursorUp(from - to);
  else if (from < to)
    ESH_TERM_CursorDown(to - from);
}

/// LINE_Printf for text that need not be terminated.
int Echo(std::string_view text) {
  const int length = static_cast<int>(text.size());
  if (g_stESh_Line.ulMode != ESH_LINE_MODE_MASKED) return std::printf("%.*s", length, text.data());
  for (int i = 0; i < length; ++i) std::putchar('*');
  return length;
}

void NoteAsShown() {
  std::memcpy(g_stESh_Line.pcLastBuf, g_stESh_Line.pcBuf, g_stESh_Line.ulLen);
  g_stESh_Line.ulLastCursor = g_stESh_Line.ulCursor;
  g_stESh_Line.ulLastLen = g_stESh_Line.ulLen;
}

}  // namespace

int LINE_Printf(const char* text) { return Echo(text); }

void LINE_MoveCurses(std::uint64_t from, std::uint64_t to) {
  const std::uint64_t width = ESH_TERM_GetScrCols();
  const ScreenPlace start = PlaceOf(from, width);
  const ScreenPlace goal = PlaceOf(to, width);
  MoveRow(start.row, goal.row);
  if (start.row != goal.row && ColumnIsLostInVerticalMove()) {
    ESH_TERM_CursorBack(width);
    ESH_TERM_CursorForward(goal.column);  // also by 0 columns: what that means is the terminal's affair
    return;
  }
  MoveColumn(start.column, goal.column);
}

void LINE_DisplayPerLine(const char* text, std::uint64_t position) {
  std::string_view rest(text);
  const std::uint64_t width = ESH_TERM_GetScrCols();
  std::uint64_t free_columns = width - PlaceOf(position, width).column;
  while (!rest.empty()) {
    const bool fills_row = width != 0 && rest.size() >= free_columns;
    const std::string_view piece = fills_row ? rest.substr(0, free_columns) : rest;
    Echo(piece);
    if (fills_row) std::fputs("\r\n", stdout);
    rest.remove_prefix(piece.size());
    free_columns = width;
  }
}

void LINE_Redisplay() {
  const std::string_view shown(g_stESh_Line.pcLastBuf, g_stESh_Line.ulLastLen);
  const std::string_view text(g_stESh_Line.pcBuf, g_stESh_Line.ulLen);
  if (shown == text) {
    LINE_MoveCurses(g_stESh_Line.ulLastCursor, g_stESh_Line.ulCursor);
  } else {
    const bool grew = text.starts_with(shown);
    const std::size_t kept = grew || shown.starts_with(text) ? std::min(shown.size(), text.size()) : 0;
    LINE_MoveCurses(g_stESh_Line.ulLastCursor, kept);
    if (!grew) ESH_TERM_Erase2ScrEnd();
    LINE_DisplayPerLine(g_stESh_Line.pcBuf + kept, kept);
    LINE_MoveCurses(text.size(), g_stESh_Line.ulCursor);
  }
  NoteAsShown();
}

void MoveCursorToEnd() {
  LINE_MoveCurses(g_stESh_Line.ulCursor, g_stESh_Line.ulLen);
  g_stESh_Line.ulCursor = g_stESh_Line.ulLen;
  g_stESh_Line.ulLastCursor = g_stESh_Line.ulLen;
  g_stESh_Line.ulLastLen = g_stESh_Line.ulLen;
}
