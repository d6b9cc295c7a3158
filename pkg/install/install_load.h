#pragma once

#include <cstdint>

/// Loads the system image of a package into the root file system and records the package. Prints what it does and why
/// it stops.
/// @param name as typed.
/// @return 0, ESH_ERR_FAIL, or the code of what is wrong with the package.
[[nodiscard]] std::uint32_t ESH_PKG_InstallLoadSystem(const char* name);

/// Handler of "install load". When all went well the shell ends with status 0, for the loaded system to start.
std::uint32_t ESH_ProcInstallLoad();
