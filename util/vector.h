#pragma once

#include <cstdint>
#include <memory>

/// A growable array of untyped pointers whose slots keep their index when an element is removed: removal leaves a
/// hole, and an append fills the lowest one. An empty slot holds NULL, so NULL cannot be stored as an element.
/// The vector owns its slot array only; the elements belong to the caller.
/// It is empty when `ulMaxIndex` is 0 and there is no array or slot 0 is NULL.
struct VEC_S {
  std::uint64_t ulCapacity;   ///< slots in the array, 0 when there is none
  std::uint64_t ulMaxIndex;   ///< highest index written and not trimmed; 0 for an empty vector
  std::uint64_t ulFirstFree;  ///< lowest index known to be empty: where an append goes
  void** ppvArray;            ///< the slots
};

/// What a vector is usually made with.
inline constexpr std::int64_t kUsualSlots = 8;

/// For a vector that gets its slots from another one.
inline constexpr std::int64_t kNoSlots = -1;

/// As an index for VEC_Add: append at `ulFirstFree`. As its result: the element was not stored.
inline constexpr std::uint64_t kNoIndex = ~std::uint64_t{0};

/// Makes a vector.
/// @param initial wanted number of slots (rounded up to a doubling of 8); kNoSlots makes a vector without an array.
/// @return the vector, to be freed with VEC_Free, or NULL when memory is short.
[[nodiscard]] VEC_S* VEC_Alloc(std::int64_t initial);

/// Stores an element; whatever was in the slot before is overwritten, not freed.
/// @param index the slot, or kNoIndex to append.
/// @return the index used, or kNoIndex when the vector is NULL or memory is short.
std::uint64_t VEC_Add(VEC_S* vec, std::uint64_t index, void* element);

/// Takes an element out, leaving a hole (or trimming the end), and gives memory back when little is left.
/// @return the element, which is the caller's again, or NULL when there was none.
void* VEC_Del(VEC_S* vec, std::uint64_t index);

/// @return the number of elements; 0 for NULL.
[[nodiscard]] std::uint64_t VEC_GetCount(const VEC_S* vec);

/// Frees the array and the record, not the elements. NULL is allowed.
void VEC_Free(VEC_S* vec);

/// Frees the array and zeroes the record, which stays the caller's.
void VEC_Release(VEC_S* vec);

/// Grows the array to the next doubling of 8 that holds `need` slots; never shrinks it.
[[nodiscard]] std::uint32_t VEC_Enlarge(VEC_S* vec, std::uint64_t need);

/// Shrinks the array when it has more than twice the room that `need` slots call for; keeps up to double the room.
[[nodiscard]] std::uint32_t VEC_Reduce(VEC_S* vec, std::uint64_t need);

/// Gives the array exactly `slots` slots; what lies beyond is dropped, what is new is empty.
/// @return 0, or ESH_ERR_FAIL when memory is short: the vector is then unchanged.
[[nodiscard]] std::uint32_t VEC_Resize(VEC_S* vec, std::uint64_t slots);

/// Visits every filled slot in index order. The bound is read anew at each step, so `visit` may remove records.
/// @param visit called with the slot's index and the record.
template <typename Record, typename Visit>
void ForEachSlot(const VEC_S& vec, Visit visit) {
  for (std::uint64_t i = 0; i < vec.ulCapacity && i <= vec.ulMaxIndex; ++i)
    if (vec.ppvArray[i] != nullptr) visit(i, *static_cast<Record*>(vec.ppvArray[i]));
}

/// Finds the first record in index order for which `test` holds.
template <typename Record, typename Test>
[[nodiscard]] Record* FindSlot(const VEC_S& vec, Test test) {
  for (std::uint64_t i = 0; i < vec.ulCapacity && i <= vec.ulMaxIndex; ++i) {
    auto* record = static_cast<Record*>(vec.ppvArray[i]);
    if (record != nullptr && test(*record)) return record;
  }
  return nullptr;
}

/// Frees every element with `free_element` and then the vector itself. NULL is allowed.
template <typename Record, typename FreeElement>
void FreeVectorOf(VEC_S* vec, FreeElement free_element) {
  if (vec == nullptr) return;
  ForEachSlot<Record>(*vec, [&](std::uint64_t, Record& record) { free_element(&record); });
  VEC_Free(vec);
}

struct VectorFreer {
  void operator()(VEC_S* vec) const { VEC_Free(vec); }
};
/// Owns a vector whose elements live elsewhere.
using UniqueVector = std::unique_ptr<VEC_S, VectorFreer>;
