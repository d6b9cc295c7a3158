#pragma once

/// The version of the boot image that runs, from the package it was booted from: its platform version, a hyphen and its
/// product version.
/// @param version room for kRunningVersionRoom bytes (pkg/compatibility.h); empty when that package cannot be read.
void ReadRunningVersion(char* version);
