#pragma once

#include <cstddef>
#include <cstdlib>

/// A large page of x86-64, and of arm64 with 4 KB pages, in bytes.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// Memory for what may fill megabytes: on ordinary pages the kernel's work for each of the many, and the processor's to
/// find them, would take longer than all that is done with what they hold.
/// @param size in bytes. From a large page on it is rounded up to whole ones, and the memory begins with one.
/// @return uninitialised memory, to be freed with std::free; NULL when memory is short.
[[nodiscard]] void* AllocateLargePages(std::size_t size);
