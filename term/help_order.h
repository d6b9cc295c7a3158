#pragma once

#include <span>

/// The order in which help lists its lines.

/// Pure numbers come first and by value, then texts by their bytes, and "<cr>" after everything.
/// @return negative, zero or positive.
[[nodiscard]] int CmpHelpString(const char* a, const char* b);

/// Sorts records in place; equal ones may change their order. Keywords whose order is that of their bytes, such as file
/// names behind their device, are sorted by the characters in which they begin to differ (radix sort), others by a
/// quicksort, which needs no memory.
/// @param records at least one, each an ESH_HELP_INFO_S or no more than its keyword.
void SortHelpLines(std::span<void*> records);
