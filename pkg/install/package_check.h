#pragma once

#include <cstdint>

#include "pkg/format/verdict.h"

struct PKG_READER_S;

/// Resolves the name of an existing package on a medium, and prints why it is refused.
/// @param name     as typed.
/// @param fullPath room for kNameRoom bytes.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PackageNameProcess(const char* name, char* fullPath);

/// Prints why a package is refused. @param name as typed. @return the code with which it is refused.
std::uint32_t PrintRefusal(PackageVerdict verdict, const char* name);

/// Verifies a package with the dots beside it, which have ended when this returns.
/// @param name as typed.
[[nodiscard]] PackageVerdict VerifyWithDots(const char* name, PKG_READER_S* package);
