#pragma once

#include <cstdint>

/// The handler of "delete": removes one file.
std::uint32_t ESH_ProcDelete();
