#include "util/large_pages.h"

#include <sys/mman.h>

#include <cstdlib>

void* AllocateLargePages(std::size_t size) {
  if (size < kLargePage) {
    return std::malloc(size);
  }
  const std::size_t whole = (size + kLargePage - 1) / kLargePage * kLargePage;
  void* memory = std::aligned_alloc(kLargePage, whole);
  if (memory != nullptr) {
    (void)madvise(memory, whole, MADV_HUGEPAGE);  // a kernel without large pages is slower, no more
  }
  return memory;
}
