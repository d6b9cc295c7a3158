#pragma once

#include <cstdint>

/// Reads a whole text as a decimal number: digits only, so neither a sign nor a blank, which strtoul(3) would take.
/// @return false when it is no such number or does not fit.
[[nodiscard]] bool ReadDecimal(const char* text, std::uint64_t& number);
