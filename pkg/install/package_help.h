#pragma once

#include <cstdint>

struct VEC_S;
struct ESH_CMD_ELEMENT_S;

/// Help callbacks of package names: each lists the packages in the media's roots. The element is not looked at.

/// For "install load".
std::uint32_t HelpInstallLoad(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);
/// For "display install package".
std::uint32_t HelpDisInstallPkg(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);

/// Their filters: 0 for a package's full name. A directory is left out (links are not followed), and so is a name that
/// is too long or holds "~".
[[nodiscard]] std::uint32_t HelpInstallFilter(const char* full);  ///< "install load"
[[nodiscard]] std::uint32_t HelpBinFilter(const char* full);      ///< "display install package"
