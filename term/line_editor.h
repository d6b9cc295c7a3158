#pragma once

#include <cstdint>

/// The editor reads one line from the console in raw mode, byte by byte, and keeps the screen in step. There is
/// exactly one, g_stESh_Line.

/// Makes the editor ready and puts the console into raw mode, for the life of the shell but for the time that a
/// tool runs. @return 0, or ESH_ERR_FAIL when memory is short.
[[nodiscard]] std::uint32_t ESH_LINE_Init();

/// Gives the console back as it was found, and the editor's memory.
void ESH_LINE_Exit();

/// Reads one line; the line end is not echoed.
/// @param mode one of ESH_LINE_MODE_E.
/// @param max  most characters accepted, less than kLineRoom - 1.
/// @return the edit buffer, valid until the next read. g_stESh_Line.ulEndKey tells why the read ended; after Ctrl+C
///         the buffer holds the single byte 3.
char* ESH_LINE_GetLine(std::uint32_t mode, std::uint32_t max);

/// Overwrites what the editor holds of the line that it read last, for a line that nobody shall find in memory.
void ForgetLine();

/// Reads a command line. @return the edit buffer with the key that ended the read: "\n" or "\t" behind the text (for
/// "\t" what stood behind the cursor is cut off), "?" where it was typed, or Ctrl+Z alone.
char* ESH_LINE_GetCmdLine();

/// Prints the prompt and lets the next read go on with the text that now stands in the edit buffer.
void ESH_LINE_SetCmdString();

/// Sets the prompt, cut to 31 characters; prints nothing.
void ESH_SetPrompt(const char* prompt);
/// The prompt that is set; valid until the next ESH_SetPrompt.
[[nodiscard]] const char* ESH_GetPrompt();
