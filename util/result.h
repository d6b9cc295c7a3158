#pragma once

#include <cstdint>

/// Result of a step that went well. Every function that returns a code returns this or one of the codes below, so
/// that a caller who needs one verdict over several steps can add the codes and compare the sum with 0.
inline constexpr std::uint32_t kSuccess = 0;

/// The general failure.
inline constexpr std::uint32_t ESH_ERR_FAIL = 0x40010001;
