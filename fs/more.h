#pragma once

#include <cstdint>

/// The handler of "more": shows a text file through the pager.
std::uint32_t ESH_ProcMore();
