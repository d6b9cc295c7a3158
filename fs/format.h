#pragma once

#include <cstdint>

/// The handler of "format": runs the format script on a medium.
std::uint32_t ESH_ProcFormat();
