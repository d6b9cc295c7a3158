#include "term/help_records.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "term/help_list.h"
#include "util/fixed_text.h"
#include "util/large_pages.h"

namespace {

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) { return (size + unit - 1) / unit * unit; }

/// The room for texts is given out by lines, each a line of the processor's caches too.
constexpr std::size_t kLine = 64;

/// A group has the size of one record and holds up to eight. They begin a line apart or more, so that their keywords
/// stand one behind the other in the room of the first one's keyword, and their descriptions in the same way in the
/// room of its description. A long text takes the lines of several records.
constexpr std::size_t kGroup = RoundUp(sizeof(ESH_HELP_INFO_S), kLine);
constexpr std::size_t kLinesInGroup = (kHelpRoom - 1) / kLine;

/// A block stands at a multiple of its size, so that a record's address tells which block it is in.
constexpr std::size_t kBlock = kLargePage;
struct alignas(kLine) Block {
  std::size_t live;  // records that are not freed yet
};

/// Where the next record goes.
struct Cursor {
  Block* block = nullptr;
  std::size_t group = 0;  // how far it stands behind the block's beginning
  std::size_t line = 0;

  [[nodiscard]] bool IsInGroup(std::size_t lines) const { return line + lines <= kLinesInGroup; }
  [[nodiscard]] bool IsLastGroup() const { return group + 2 * kGroup > kBlock; }
  [[nodiscard]] char* Address() const { return reinterpret_cast<char*>(block) + group + line * kLine; }
};

/// Its block stays when it is empty: the next list is not far.
Cursor g_next;

Block* BlockOf(ESH_HELP_INFO_S* record) {
  const std::size_t offset = reinterpret_cast<std::uintptr_t>(record) & (kBlock - 1);
  return reinterpret_cast<Block*>(reinterpret_cast<char*>(record) - offset);
}

Cursor BeginningOf(Block* block) { return {block, sizeof(Block), 0}; }

/// @return whether there is memory for a new block.
bool StartBlock() {
  // A short list, which most are, is better off with the few small pages that it touches.
  void* memory = g_next.block == nullptr ? std::aligned_alloc(kBlock, kBlock) : AllocateLargePages(kBlock);
  if (memory == nullptr) {
    return false;
  }
  g_next = BeginningOf(static_cast<Block*>(memory));
  g_next.block->live = 0;
  return true;
}

/// Moves on to where so many lines are left in a group.
bool FindRoom(std::size_t lines) {
  if (g_next.block == nullptr) {
    return StartBlock();
  }
  if (g_next.IsInGroup(lines)) {
    return true;
  }
  if (g_next.IsLastGroup()) {
    return StartBlock();
  }
  g_next.group += kGroup;
  g_next.line = 0;
  return true;
}

}  // namespace

ESH_HELP_INFO_S* NewHelpRecord(std::string_view keyword, std::string_view help) {
  const std::size_t lines = std::min(std::max(keyword.size(), help.size()) / kLine + 1, kLinesInGroup);
  if (!FindRoom(lines)) {
    return nullptr;
  }
  auto* record = reinterpret_cast<ESH_HELP_INFO_S*>(g_next.Address());
  g_next.line += lines;
  ++g_next.block->live;
  CopyText(record->szKeyWord, keyword);
  CopyText(record->szHelp, help);
  return record;
}

void FreeHelpRecord(ESH_HELP_INFO_S* record) {
  if (record == nullptr) {
    return;
  }
  Block* block = BlockOf(record);
  if (--block->live > 0) {
    return;
  }
  if (block == g_next.block) {
    g_next = BeginningOf(block);
  } else {
    std::free(block);
  }
}
