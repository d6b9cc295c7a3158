#pragma once

#include <cstddef>
#include <cstdint>

struct VEC_S;

/// Answers "?": lists what may come next, or what continues the partial word, or prints why the words do not match.
/// @param words     the words of the line, without the "?".
/// @param atNewWord 1: the "?" begins a new word; any other value: it follows a partly typed one.
void ESH_Help(const VEC_S* words, std::uint16_t atNewWord);

/// Sorts and prints a help list, then an empty line; an empty list prints nothing.
/// @param whole 1: keyword and description; any other value: the keywords only.
void PrintHelpVec(VEC_S* list, std::uint16_t whole);

inline constexpr std::size_t kHelpOutputRoom = 4088;

/// Formats a sorted list in two columns, descriptions wrapped to a screen of 80 columns.
/// @param output buffer of kHelpOutputRoom bytes, emptied first; it is printed whenever the next piece would not
///               fit, and holds what has not been printed afterwards.
void PrintWholeHelp(const VEC_S* list, char* output);
