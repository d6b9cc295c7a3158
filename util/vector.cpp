#include "util/vector.h"

#include <algorithm>
#include <cstdlib>

#include "util/result.h"

namespace {

constexpr std::uint64_t kMinSlots = 8;
constexpr std::uint64_t kMostSlots = std::uint64_t{1} << 60;  // doubled past this, the byte count would overflow

bool IsHole(const VEC_S& vec, std::uint64_t index) { return vec.ppvArray[index] == nullptr; }

std::uint64_t NextHole(const VEC_S& vec, std::uint64_t from) {
  while (from < vec.ulCapacity && !IsHole(vec, from)) ++from;
  return from;
}

/// Lowers the end over trailing holes and gives back memory. A failed shrink leaves more room than needed, no harm.
void Trim(VEC_S& vec) {
  while (vec.ulMaxIndex > 0 && IsHole(vec, vec.ulMaxIndex)) --vec.ulMaxIndex;
  (void)VEC_Reduce(&vec, vec.ulMaxIndex + 1);
}

}  // namespace

VEC_S* VEC_Alloc(std::int64_t initial) {
  auto* vec = static_cast<VEC_S*>(std::malloc(sizeof(VEC_S)));
  if (vec == nullptr) return nullptr;
  *vec = VEC_S{};
  if (initial == kNoSlots) return vec;
  if (VEC_Enlarge(vec, static_cast<std::uint64_t>(initial)) != kSuccess) {
    std::free(vec);
    return nullptr;
  }
  return vec;
}

std::uint64_t VEC_Add(VEC_S* vec, std::uint64_t index, void* element) {
  if (vec == nullptr) return kNoIndex;
  const std::uint64_t slot = index == kNoIndex ? vec->ulFirstFree : index;
  if (slot >= vec->ulCapacity && VEC_Enlarge(vec, slot + 1) != kSuccess) return kNoIndex;
  vec->ppvArray[slot] = element;
  if (slot == vec->ulFirstFree && element != nullptr) vec->ulFirstFree = NextHole(*vec, slot + 1);
  vec->ulMaxIndex = std::max(vec->ulMaxIndex, slot);
  return slot;
}

void* VEC_Del(VEC_S* vec, std::uint64_t index) {
  if (vec == nullptr || index > vec->ulMaxIndex || index >= vec->ulCapacity) return nullptr;
  void* element = vec->ppvArray[index];
  vec->ppvArray[index] = nullptr;
  vec->ulFirstFree = std::min(vec->ulFirstFree, index);
  if (index == vec->ulMaxIndex) Trim(*vec);
  return element;
}

std::uint64_t VEC_GetCount(const VEC_S* vec) {
  if (vec == nullptr) return 0;
  const std::uint64_t bound = std::min(vec->ulCapacity, vec->ulMaxIndex + 1);
  return bound - static_cast<std::uint64_t>(std::count(vec->ppvArray, vec->ppvArray + bound, nullptr));
}

void VEC_Free(VEC_S* vec) {
  if (vec == nullptr) return;
  std::free(vec->ppvArray);
  std::free(vec);
}

void VEC_Release(VEC_S* vec) {
  if (vec == nullptr) return;
  std::free(vec->ppvArray);
  *vec = VEC_S{};
}

std::uint32_t VEC_Enlarge(VEC_S* vec, std::uint64_t need) {
  if (need > kMostSlots) return ESH_ERR_FAIL;
  std::uint64_t slots = vec->ulCapacity == 0 ? kMinSlots : vec->ulCapacity;
  while (slots < need) slots *= 2;
  return slots > vec->ulCapacity ? VEC_Resize(vec, slots) : kSuccess;
}

std::uint32_t VEC_Reduce(VEC_S* vec, std::uint64_t need) {
  const std::uint64_t target = std::max(need, kMinSlots);
  std::uint64_t slots = vec->ulCapacity;
  while (slots > target) slots /= 2;
  return vec->ulCapacity > slots * 2 ? VEC_Resize(vec, slots * 2) : kSuccess;
}

std::uint32_t VEC_Resize(VEC_S* vec, std::uint64_t slots) {
  if (slots > kMostSlots) return ESH_ERR_FAIL;
  auto** array = static_cast<void**>(std::malloc(slots * sizeof(void*)));
  if (array == nullptr) return ESH_ERR_FAIL;
  const std::uint64_t kept = std::min(vec->ulCapacity, slots);
  std::fill(std::copy_n(vec->ppvArray, kept, array), array + slots, nullptr);
  std::free(vec->ppvArray);
  vec->ppvArray = array;
  vec->ulCapacity = slots;
  return kSuccess;
}
