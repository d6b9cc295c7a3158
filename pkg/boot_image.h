#pragma once

#include <cstddef>

/// Room for the running version.
inline constexpr std::size_t kRunningVersionRoom = 129;

/// The version of the boot image that runs, from the package it was booted from: its platform version, a hyphen and its
/// product version.
/// @param version room for kRunningVersionRoom bytes; empty when that package cannot be read.
void ReadRunningVersion(char* version);
