#pragma once

#include <cstdint>

#include "term/help/help_list.h"

/// Where TAB completion stands: a cycle of candidates lasts as long as TAB is pressed on the same word.
struct ESH_TAB_STATE_S {
  std::uint64_t ulWordNum;   ///< words on the line at the last completion
  std::uint16_t usAddBlank;  ///< 1 = a blank may follow a unique completion; set by every reset, never cleared
  char szPrefix[kHelpRoom];  ///< the common prefix that the cycle began with; empty = no cycle
  char szLast[kHelpRoom];    ///< what the last completion put into the line
};

extern ESH_TAB_STATE_S g_stTabState;

/// Ends a cycle.
void ESH_ResetTabState();

/// Completes the last word in place: first to what all candidates share, then one candidate after the other. What
/// cannot be completed stays as it is. Prints nothing.
/// @param words the words of the line. The last word's text may be changed.
/// @param line  the line without the TAB, a buffer of at least 512 bytes.
void ESH_TabComplete(VEC_S* words, char* line);

/// Puts in the only candidate, or the first that is not the typed word itself.
/// @param candidates a help list without placeholders.
void TabPrintFirst(const VEC_S* words, char* line, const VEC_S* candidates, const char* typed);

/// Replaces the last word of the line; leading blanks of the line are dropped.
/// @param addBlank 1: a blank may follow.
void CmdTabModifyBuf(const VEC_S* words, char* line, const char* text, std::uint16_t addBlank);
