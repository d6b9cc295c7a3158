#pragma once

#include <cstdint>

/// The handler of "copy": copies one regular file. A declined question is a success.
std::uint32_t ESH_ProcCopy();
