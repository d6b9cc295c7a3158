#pragma once

#include <cstdint>

/// The links of the circular list of remembered lines.
struct ESH_HIS_LINK_S {
  ESH_HIS_LINK_S* pstNext;
  ESH_HIS_LINK_S* pstPrev;
};

/// One remembered line. The list owns the entry and its text.
struct ESH_HIS_NODE_S : ESH_HIS_LINK_S {
  char* pcCmd;
};

/// The history: head and sentinel of the list. `pstNext` is the oldest entry, `pstPrev` the newest; both are the
/// record itself while the list is empty.
struct ESH_HIS_REC_S : ESH_HIS_LINK_S {
  ESH_HIS_LINK_S* pstCur;  ///< the entry last recalled with the arrows, NULL when not walking
  std::uint32_t ulMaxNum;
  std::uint32_t ulCurNum;
};

/// The last command lines of the run, in memory only.
extern ESH_HIS_REC_S g_stEShHisRec;

/// Starts with an empty history. @return 0.
std::uint32_t ESH_HIS_Init();

/// Remembers a command line (without its line end), unless it is blank, begins with "!" or "#" or equals the newest
/// entry; the oldest of ten makes room. Every call restarts the walk at the newest entry. When memory is short the
/// line is not remembered.
void ESH_HIS_Add(const char* line);

/// Recall the next older or newer line into `buffer`; past the newest the buffer becomes empty.
/// @param room size of `buffer` in bytes.
/// @return 1 when the buffer was written, 0 when there is nothing to recall in that direction.
[[nodiscard]] std::uint16_t ESH_HIS_ArrowUp(std::uint64_t room, char* buffer);    ///< older
[[nodiscard]] std::uint16_t ESH_HIS_ArrowDown(std::uint64_t room, char* buffer);  ///< newer
