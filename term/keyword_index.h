#pragma once

#include <cstddef>
#include <cstdint>

struct VEC_S;

/// Finds a keyword in a help list without walking it: a hash table of the list's records, beside the list. Walking
/// costs the square of the list's length, which a directory of 100,000 files does not forgive.
///
/// One index serves one list at a time. A list that changed by other hands is indexed anew; without memory for the
/// table the list is walked after all.
class KeywordIndex {
 public:
  /// Serves this list from here on.
  void Follow(const VEC_S& list);
  /// Whether the list holds a record with exactly this keyword.
  [[nodiscard]] bool Holds(const char* keyword) const;
  /// Notes the record that was put into the list at this index.
  void Added(const VEC_S& list, std::uint64_t index);
  /// Gives the memory back.
  void Forget();

 private:
  /// Small, so that the table of a long list stays in the processor's caches.
  struct Entry {
    std::uint32_t place;  // the record's index in the list, plus one; 0: the slot is free
    std::uint32_t hash;   // tells nearly all other keywords apart without a look at the record
  };

  [[nodiscard]] bool IsUpToDate(const VEC_S& list) const;
  void Note(const VEC_S& list);
  void Rebuild(std::size_t slots);
  void Grow();
  void Insert(Entry entry);
  [[nodiscard]] Entry EntryFor(std::uint64_t index) const;
  /// NULL when the record was taken out by other hands.
  [[nodiscard]] const char* KeywordOf(Entry entry) const;
  [[nodiscard]] bool Is(Entry entry, const char* keyword) const;
  [[nodiscard]] std::size_t SlotFor(const char* keyword, std::uint32_t hash) const;

  const VEC_S* list_ = nullptr;
  void** array_ = nullptr;  // the list as it was when last seen
  std::uint64_t max_index_ = 0;
  std::uint64_t first_free_ = 0;

  Entry* table_ = nullptr;  // open addressing; the number of slots is a power of two
  std::size_t slots_ = 0;
  std::size_t used_ = 0;
};
