#pragma once

#include <cstdint>

/// Prints the product's banner, copyright, uptime and the boot image's versions.
void ESH_DVER_DisplayVersion();

/// Prints the part of it that is about the boot image.
void DisplayPkgInfoForDver();

/// Registers "display version" and "display copyright".
void RegisterIdentityCommands();

/// Handlers of "display version" and "display copyright". @return 0.
std::uint32_t ESH_ProcDisVersion();    ///< "display version"
std::uint32_t ESH_ProcDisCopyright();  ///< "display copyright"
