#pragma once

/// The version of the boot image that runs, from the package it was booted from: its platform version, a hyphen and its
/// product version. Nobody has verified that package, and what unpacks its description is told no lengths: it is read
/// in a child, whose crash or hanging is an unknown version.
/// @param version room for kRunningVersionRoom bytes (pkg/format/compatibility.h); empty when that package cannot be
/// read.
void ReadRunningVersion(char* version);
