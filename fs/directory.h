#pragma once

#include <cstdint>

/// The handler of "mkdir": creates one directory.
std::uint32_t ESH_ProcMkdir();

/// The handler of "rmdir": removes one empty directory.
std::uint32_t ESH_ProcRmdir();
