#pragma once

#include <cstdint>

/// Records which package was installed, for the system that starts next. The record appears whole or not at all.
/// @param package full name of the package, below /mnt/.
/// @return 0 or ESH_ERR_FAIL: the package is elsewhere, or the record cannot be written.
[[nodiscard]] std::uint32_t WriteChangeList(const char* package);
