#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

struct VEC_S;

/// Finds a keyword in a help list without walking it: a hash table of the list's records, beside the list. Walking
/// costs the square of the list's length, which a directory of 100,000 files does not forgive.
///
/// One index serves one list at a time. A list is indexed anew when others added to it where ESH_NewHelpInfo would, or
/// took records out, but not when they filled another hole than the lowest. Without memory for the table the list is
/// walked after all.
class KeywordIndex {
 public:
  /// What the other calls want of a keyword, so that it is computed once.
  [[nodiscard]] static std::uint32_t HashOf(std::string_view keyword);

  /// Serves this list from here on.
  void Follow(const VEC_S& list);
  /// Whether the list holds a record with exactly this keyword.
  [[nodiscard]] bool Holds(std::string_view keyword, std::uint32_t hash) const;
  /// Notes the record that was put into the list at this index. @param hash its keyword's.
  void Added(const VEC_S& list, std::uint64_t index, std::uint32_t hash);
  /// Gives the memory back.
  void Forget();

 private:
  struct Entry {
    std::uint32_t index;  // the record's in the list
    std::uint32_t hash;   // tells nearly all other keywords apart without a look at the record
  };
  /// One byte of an entry's hash. Nearly every search looks at tags alone, and even those of a long list stay in the
  /// processor's nearer caches.
  using Tag = std::uint8_t;
  static constexpr Tag kFree = 0;

  /// Open addressing; the number of slots is a power of two.
  struct Table {
    Entry* entries = nullptr;
    Tag* tags = nullptr;  // behind the entries, in the same memory; kFree: the slot is free
    std::size_t slots = 0;
    std::size_t used = 0;
  };

  [[nodiscard]] bool IsUpToDate(const VEC_S& list) const;
  void Note(const VEC_S& list);
  /// Without entries when memory is short.
  [[nodiscard]] static Table NewTable(std::size_t slots);
  void Grow();
  /// Puts an entry into a free slot.
  void Insert(Entry entry);
  void InsertNewest();
  /// NULL when the record was taken out by other hands.
  [[nodiscard]] const char* KeywordOf(Entry entry) const;
  [[nodiscard]] bool Is(Entry entry, std::string_view keyword, std::uint32_t hash) const;
  [[nodiscard]] bool IsInTable(std::string_view keyword, std::uint32_t hash) const;
  /// Where the search for a keyword begins, and where it goes on.
  [[nodiscard]] std::size_t HomeOf(std::uint32_t hash) const { return hash & (table_.slots - 1); }
  [[nodiscard]] std::size_t NextSlot(std::size_t slot) const { return (slot + 1) & (table_.slots - 1); }

  const VEC_S* list_ = nullptr;
  void** array_ = nullptr;  // the list as it was when last seen
  std::uint64_t max_index_ = 0;
  std::uint64_t first_free_ = 0;

  Table table_;
  /// The last record waits outside of the table until the next one comes: its slot's memory is fetched meanwhile.
  std::optional<Entry> newest_;
};
