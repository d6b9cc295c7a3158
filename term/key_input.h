#pragma once

#include <cstdint>

/// Waits for one byte from the console. Pending output is pushed out first, so that a question is seen before it is
/// waited for, and the input is drawn anew when somebody else wrote to the console (g_bESh_SynInput).
/// End of file, errors, time-outs and NUL bytes are all an empty try.
/// @param tries how many empty tries of 0.1 s to wait; 0 waits for ever.
/// @return the byte, or -1 when the tries ran out.
[[nodiscard]] int GetChar(std::uint32_t tries);

/// Reads away the rest of an escape sequence: everything until the input has been quiet for 0.1 s.
void LINE_EscapeSequenceNULL();
