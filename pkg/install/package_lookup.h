#pragma once

#include <cstdint>

/// Resolves the name of an existing package on a medium, and prints why it is refused.
/// @param name     as typed.
/// @param fullPath room for kNameRoom bytes.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PackageNameProcess(const char* name, char* fullPath);
