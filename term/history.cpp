#include "term/history.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

ESH_HIS_REC_S g_stEShHisRec;

namespace {

constexpr std::uint32_t kMaxLines = 10;

bool IsSentinel(const ESH_HIS_LINK_S* link) { return link == &g_stEShHisRec; }

const char* TextOf(const ESH_HIS_LINK_S* link) { return static_cast<const ESH_HIS_NODE_S*>(link)->pcCmd; }

bool EqualsNewest(std::string_view line) {
  const ESH_HIS_LINK_S* newest = g_stEShHisRec.pstPrev;
  return !IsSentinel(newest) && line == TextOf(newest);
}

bool IsWorthRemembering(std::string_view line) {
  const std::size_t first = line.find_first_not_of(' ');
  return first != std::string_view::npos && line[first] != '!' && line[first] != '#' && !EqualsNewest(line);
}

void DropOldest() {
  auto* oldest = static_cast<ESH_HIS_NODE_S*>(g_stEShHisRec.pstNext);
  oldest->pstNext->pstPrev = oldest->pstPrev;
  oldest->pstPrev->pstNext = oldest->pstNext;
  std::free(oldest->pcCmd);
  delete oldest;
  --g_stEShHisRec.ulCurNum;
}

void Append(const char* line) {
  UniqueText copy(strdup(line));
  auto* node = new (std::nothrow) ESH_HIS_NODE_S{};
  if (copy == nullptr || node == nullptr) {
    delete node;
    return;
  }
  node->pcCmd = copy.release();
  node->pstPrev = g_stEShHisRec.pstPrev;
  node->pstNext = &g_stEShHisRec;
  node->pstPrev->pstNext = node;
  g_stEShHisRec.pstPrev = node;
  ++g_stEShHisRec.ulCurNum;
}

std::uint16_t Recall(ESH_HIS_LINK_S* entry, std::uint64_t room, char* buffer) {
  g_stEShHisRec.pstCur = entry;
  CopyBounded(buffer, room, TextOf(entry));
  return 1;
}

}  // namespace

std::uint32_t ESH_HIS_Init() {
  g_stEShHisRec.pstNext = &g_stEShHisRec;
  g_stEShHisRec.pstPrev = &g_stEShHisRec;
  g_stEShHisRec.pstCur = nullptr;
  g_stEShHisRec.ulMaxNum = kMaxLines;
  g_stEShHisRec.ulCurNum = 0;
  return kSuccess;
}

void ESH_HIS_Add(const char* line) {
  g_stEShHisRec.pstCur = nullptr;
  if (!IsWorthRemembering(line)) return;
  if (g_stEShHisRec.ulCurNum >= g_stEShHisRec.ulMaxNum) DropOldest();
  Append(line);
}

std::uint16_t ESH_HIS_ArrowUp(std::uint64_t room, char* buffer) {
  ESH_HIS_LINK_S* from = g_stEShHisRec.pstCur == nullptr ? &g_stEShHisRec : g_stEShHisRec.pstCur;
  return IsSentinel(from->pstPrev) ? 0 : Recall(from->pstPrev, room, buffer);
}

std::uint16_t ESH_HIS_ArrowDown(std::uint64_t room, char* buffer) {
  if (g_stEShHisRec.pstCur == nullptr) return 0;
  if (!IsSentinel(g_stEShHisRec.pstCur->pstNext)) return Recall(g_stEShHisRec.pstCur->pstNext, room, buffer);
  g_stEShHisRec.pstCur = nullptr;
  buffer[0] = '\0';
  return 1;
}
