#include "term/help_records.h"

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "term/help_list.h"

namespace {

constexpr std::size_t kBlockSize = std::size_t{2} << 20;  // a large page of x86-64, and of arm64 with 4 KB pages

/// A block stands at a multiple of its size, so that a record's address tells which block it is in.
struct Block {
  std::size_t used;  // records handed out since the block was last empty
  std::size_t live;  // of these, the ones not freed yet
  ESH_HELP_INFO_S records[1];
};
constexpr std::size_t kRecordsInBlock = (kBlockSize - offsetof(Block, records)) / sizeof(ESH_HELP_INFO_S);

/// The block that is being filled. It stays when it is empty: the next list is not far.
Block* g_filling = nullptr;

Block* BlockOf(ESH_HELP_INFO_S* record) {
  const std::size_t offset = reinterpret_cast<std::uintptr_t>(record) & (kBlockSize - 1);
  return reinterpret_cast<Block*>(reinterpret_cast<char*>(record) - offset);
}

/// @return a block with room for a record, or NULL.
Block* BlockWithRoom() {
  if (g_filling != nullptr && g_filling->used < kRecordsInBlock) {
    return g_filling;
  }
  auto* block = static_cast<Block*>(std::aligned_alloc(kBlockSize, kBlockSize));
  if (block == nullptr) {
    return nullptr;
  }
  if (g_filling != nullptr) {
    // The list is a long one. A short one, which most are, is better off with the few small pages that it touches.
    (void)madvise(block, kBlockSize, MADV_HUGEPAGE);  // a kernel without large pages is slower, no more
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
