#pragma once

struct VEC_S;

/// Matches the words of a line against the commands of the current view and runs the one command that remains, or
/// prints why there is none.
/// @param words stay the caller's.
void ESH_CmdExecute(const VEC_S* words);
