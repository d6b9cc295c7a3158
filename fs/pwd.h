#pragma once

#include <cstdint>

/// The handler of "pwd": prints the working directory's display name.
std::uint32_t ESH_ProcPwd();
