#pragma once

#include <cstdlib>

/// Ends the run, so that the fuzzer keeps the input, when something does not hold that always must.
inline void Require(bool holds) {
  if (!holds) std::abort();
}
