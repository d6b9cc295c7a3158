#pragma once

#include <cstdint>

struct VEC_S;

/// Prints a caret under a word of the line above and the message of a match level below ESH_MATCH_PARAM. Any other
/// level prints the caret and a blank, no line end.
/// @param wordIndex the word at fault; one past the last word puts the caret behind the line.
void ESH_PrintErrorInfo(std::uint32_t level, std::uint64_t wordIndex, const VEC_S* words);
