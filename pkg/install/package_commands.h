#pragma once

/// Registers the package commands.
void ESH_Pkgm_Init();
