#pragma once

#include <cstddef>
#include <cstdint>

/// What a line of a description must begin with to be shown.
inline constexpr std::size_t kDetailKeys = 11;
extern const char* const g_apcDetailFilter[kDetailKeys];

/// Verifies a package and prints its description. @param name as typed.
/// @return 0, ESH_ERR_FAIL, or the code of what is wrong with the package.
[[nodiscard]] std::uint32_t ESH_PKG_DispPackageByName(const char* name);

/// Handler of "display install package".
std::uint32_t ESH_ProcDisInstallPkg();
