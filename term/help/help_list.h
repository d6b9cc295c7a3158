#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "util/vector.h"

inline constexpr std::size_t kHelpRoom = 513;

/// One line of help, from malloc. The keyword comes first, so that a record's address is also its keyword's.
struct ESH_HELP_INFO_S {
  char szKeyWord[kHelpRoom];  ///< a keyword, a placeholder, a file name or "<cr>"
  char szHelp[kHelpRoom];     ///< its description
};

/// A help list is a vector of such records, which it owns.

/// Lists what the candidates offer: their own keyword and description, or what their help callback adds.
/// @param word       what the callbacks shall continue; "?" at a new word.
/// @param candidates command elements.
/// @return a new list, or NULL when memory is short.
[[nodiscard]] VEC_S* ESH_MakeHelpInfoVec(const char* word, const VEC_S* candidates);

/// Adds one line, unless the keyword is listed already. Texts are cut to 512 characters. When memory is short
/// nothing is added.
/// @return 0 also when nothing was added.
std::uint32_t ESH_NewHelpInfo(const char* keyword, const char* help, VEC_S* list);

/// Notes that memory was too short for a line. Help callbacks call it when they cannot find out what to add.
void NoteLostHelpLine();

/// Whether a line was lost since ESH_MakeHelpInfoVec was called last. Help shows those that are left; a completion of
/// them would be a wrong one.
[[nodiscard]] bool HelpLineWasLost();

/// Frees every record and the list. NULL is allowed.
void ESH_FreeHelpInfoVec(VEC_S* list);

/// Takes one line out of a list and frees it.
void RemoveHelpLine(VEC_S& list, std::uint64_t index);

struct HelpListFreer {
  void operator()(VEC_S* list) const { ESH_FreeHelpInfoVec(list); }
};
using UniqueHelpList = std::unique_ptr<VEC_S, HelpListFreer>;

/// The order of help lines: pure numbers come first and by value, then texts by their bytes, and "<cr>" after
/// everything.
/// @return negative, zero or positive.
[[nodiscard]] int CmpHelpString(const char* a, const char* b);

/// Sorts the records from index `lo` to index `hi` in place; equal ones may change their order. There must be no
/// holes.
void QuickSortStrVec(VEC_S* list, std::int64_t lo, std::int64_t hi);
