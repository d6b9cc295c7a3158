#include "term/help_records.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "term/help_list.h"
#include "util/large_pages.h"

namespace {

/// A block stands at a multiple of its size, so that a record's address tells which block it is in.
struct Block {
  std::size_t used;  // records handed out since the block was last empty
  std::size_t live;  // of these, the ones not freed yet
  ESH_HELP_INFO_S records[1];
};
constexpr std::size_t kRecordsInBlock = (kLargePage - offsetof(Block, records)) / sizeof(ESH_HELP_INFO_S);

/// The block that is being filled. It stays when it is empty: the next list is not far.
Block* g_filling = nullptr;

Block* BlockOf(ESH_HELP_INFO_S* record) {
  const std::size_t offset = reinterpret_cast<std::uintptr_t>(record) & (kLargePage - 1);
  return reinterpret_cast<Block*>(reinterpret_cast<char*>(record) - offset);
}

/// @return a block with room for a record, or NULL.
Block* BlockWithRoom() {
  if (g_filling != nullptr && g_filling->used < kRecordsInBlock) {
    return g_filling;
  }
  // A short list, which most are, is better off with the few small pages that it touches.
  auto* block = static_cast<Block*>(g_filling == nullptr ? std::aligned_alloc(kLargePage, kLargePage)
                                                         : AllocateLargePages(kLargePage));
  if (block == nullptr) {
    return nullptr;
  }
  block->used = 0;
  block->live = 0;
  g_filling = block;
  return block;
}

}  // namespace

ESH_HELP_INFO_S* NewHelpRecord() {
  Block* block = BlockWithRoom();
  if (block == nullptr) {
    return nullptr;
  }
  ++block->live;
  return block->records + block->used++;
}

void FreeHelpRecord(ESH_HELP_INFO_S* record) {
  if (record == nullptr) {
    return;
  }
  Block* block = BlockOf(record);
  if (--block->live > 0) {
    return;
  }
  if (block == g_filling) {
    block->used = 0;
  } else {
    std::free(block);
  }
}
