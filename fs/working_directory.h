#pragma once

#include <cstddef>
#include <cstdint>

#include "util/unique_handle.h"

/// Gives the working directory as a full name, cut to `size` bytes. When it can no longer be read the environment
/// variable SYSPATH stands in for it.
/// @return 0, or ESH_ERR_FAIL when there is neither.
[[nodiscard]] std::uint32_t ESH_GetCwd(std::size_t size, char* output);

/// Moves to the first medium there is: flash, CF card, USB disk. Without one the working directory stays.
/// @return 0, or ESH_ERR_FAIL when it stays.
[[nodiscard]] std::uint32_t ESH_SetPwd();

/// Puts the working directory back when it goes out of scope, also one that has been removed meanwhile.
class WorkingDirectoryKept {
 public:
  /// Holds the present one open, so that it can be found again under any name.
  WorkingDirectoryKept();
  ~WorkingDirectoryKept();
  WorkingDirectoryKept(const WorkingDirectoryKept&) = delete;
  WorkingDirectoryKept& operator=(const WorkingDirectoryKept&) = delete;
  /// Whether there is a way back: without one nobody should leave, or names that are typed later would mean other
  /// files.
  explicit operator bool() const { return static_cast<bool>(directory_); }

 private:
  UniqueFd directory_;
};
