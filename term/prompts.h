#pragma once

#include <cstdint>

/// What every caller allows the operator for an answer.
inline constexpr std::uint32_t kConfirmSeconds = 30;

/// Waits for the answer to a question that the caller has printed (its text ends in "[Y/N]:").
/// @param seconds how long to wait for each key.
/// @return 1 = yes; 0 = no, Ctrl+C or no key in time.
[[nodiscard]] std::uint16_t ESH_LINE_GetConfirm(std::uint32_t seconds);

/// Waits for the answer as above, for as long as every command allows the operator, and ends the line of the
/// question. @return true for yes.
[[nodiscard]] bool IsConfirmed();
