#pragma once

#include <cstdint>

/// The handler of "move": moves one regular file with the mv tool.
std::uint32_t ESH_ProcMove();
