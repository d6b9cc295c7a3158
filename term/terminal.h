#pragma once

#include <cstdint>

/// Output through the terminfo database and nothing else. Every function looks its capability up afresh, writes to
/// standard output, and does nothing where the terminal lacks the capability. Nothing reaches the screen before
/// ESH_TERM_OFlush or another flush of standard output.

/// Loads the description of the terminal that TERM names. The shell must not lose its console over a name, so an
/// unknown or missing one is reported in one line and a plain terminal is taken in its place.
void SetUpTerminal();

/// Screen width in columns and height in lines. A terminal that tells none gives a number so large that no line
/// ever wraps.
[[nodiscard]] std::uint64_t ESH_TERM_GetScrCols();   ///< columns
[[nodiscard]] std::uint64_t ESH_TERM_GetScrLines();  ///< lines

/// Pushes out what was written. @return the answer of fflush(3).
int ESH_TERM_OFlush();

/// Ends the line that an operator has typed or answered, and pushes it out: what comes now may work for minutes before
/// it says anything, and must not look as if the key had not been heard.
void EndTypedLine();

/// Erase from the cursor to an end of its line; the cursor stays.
void ESH_TERM_Erase2LineEnd();
void ESH_TERM_Erase2LineBegin();  ///< the cursor's place included
/// Erases the cursor's line; the cursor stays.
void ESH_TERM_EraseLine();
/// Erases from the cursor to the end of the screen; the cursor stays.
void ESH_TERM_Erase2ScrEnd();
/// Clears the screen and puts the cursor home.
void ESH_TERM_EraseScreen();
/// Rings.
void ESH_TERM_Bell();

/// Move the cursor by `count` columns or rows. A terminal with the counted capability gets it for every count, 0
/// included.
void ESH_TERM_CursorBack(std::uint64_t count);     ///< stops at the left edge
void ESH_TERM_CursorForward(std::uint64_t count);  ///< stops at the right edge
void ESH_TERM_CursorUp(std::uint64_t count);       ///< stops at the top
void ESH_TERM_CursorDown(std::uint64_t count);     ///< stops at the bottom, without scrolling
