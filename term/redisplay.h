#pragma once

#include <cstdint>

/// Echo of the edit buffer: the text itself, or one "*" per byte while a password is read. @return printf's result.
int LINE_Printf(const char* text);

/// Moves the screen's cursor from one buffer position to another, over as many rows as the line takes.
void LINE_MoveCurses(std::uint64_t from, std::uint64_t to);

/// Writes text that starts at a buffer position. A row that is filled to the right margin is ended at once, also
/// when the text ends there: the cursor then stands at the start of the next row, never in the terminal's state of
/// a pending wrap, which no two terminals treat alike.
void LINE_DisplayPerLine(const char* text, std::uint64_t position);

/// Brings the screen in line with the buffer by the shortest of four ways: a new tail, a cut tail, a move, or the
/// whole text again. The prompt is never rewritten.
void LINE_Redisplay();

/// Moves the cursor behind the text, so that what is printed next begins below the whole line.
void MoveCursorToEnd();
