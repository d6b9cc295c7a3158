#pragma once

#include <cstdint>

/// What a command accepts as a file name, and the check callbacks of its parameters.

/// @return 0 when a name is below its medium's root; ESH_ERR_FAIL for the root itself or a name that does not convert.
[[nodiscard]] std::uint32_t ESH_IsUserManipulatedFile(const char* name);

/// Check callback: 1 when a typed argument names a legal place on a present medium, else 0.
[[nodiscard]] std::uint16_t ESH_FS_CheckInvalidFileDir(const char* typed);

/// Check callback: 1 when a typed argument names something on a present medium that the user may operate on, which
/// the medium's root is not; else 0.
[[nodiscard]] std::uint16_t ESH_FS_CheckUserManipulatedFile(const char* typed);
