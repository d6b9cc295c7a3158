#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct VEC_S;
struct ESH_HELP_INFO_S;

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
  /// Notes a record that was appended to the list.
  void Added(const VEC_S& list, const ESH_HELP_INFO_S& record);
  /// Gives the memory back.
  void Forget();

 private:
  struct Entry {
    const ESH_HELP_INFO_S* record;  // NULL: the slot is free
    std::size_t hash;               // tells nearly all other keywords apart without a look at the record
  };

  [[nodiscard]] bool IsUpToDate(const VEC_S& list) const;
  void Note(const VEC_S& list);
  void Rebuild(std::size_t slots);
  void Grow();
  void Insert(Entry entry);
  [[nodiscard]] std::size_t SlotFor(std::string_view keyword, std::size_t hash) const;

  const VEC_S* list_ = nullptr;
  void** array_ = nullptr;  // the list as it was when last seen
  std::uint64_t max_index_ = 0;
  std::uint64_t first_free_ = 0;

  Entry* table_ = nullptr;  // open addressing; the number of slots is a power of two
  std::size_t slots_ = 0;
  std::size_t used_ = 0;
};
