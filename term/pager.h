#pragma once

#include <cstdint>

/// Writes text, a page at a time.
/// @param text   changed in place: line ends are overwritten. Lines end at "\r" or "\n"; both together are one end.
/// @param paging 1: stop at "---- More ----" whenever a page is full.
/// @return 1 when everything was shown, 0 when the user stopped.
std::uint16_t ESH_LINE_DisplayString(char* text, std::uint16_t paging);

/// Writes a listing through the pager; the pages are counted over all the texts of one command. The text is changed.
/// @return 0 when everything was shown, ESH_ERR_FAIL when the user stopped.
std::uint32_t ESH_OutString(char* text);
