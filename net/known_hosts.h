#pragma once

#include <cstdint>

/// Forgets the server keys that SSH remembers.
/// @return 0, also when there were none; otherwise ESH_ERR_FAIL.
std::uint32_t ForgetKnownHosts();
