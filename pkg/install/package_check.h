#pragma once

#include <cstdint>

struct PKG_READER_S;

/// Resolves the name of an existing package on a medium, and prints why it is refused.
/// @param name     as typed.
/// @param fullPath room for kNameRoom bytes.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t PackageNameProcess(const char* name, char* fullPath);

/// What more than one package command prints, with the name as typed.
inline constexpr char kCorrupted[] = "%s is corrupted.\r\n";

/// Verifies a package with the dots beside it, which have ended when this returns.
/// @param name as typed.
/// @return 0 or the code of what is wrong with the package.
[[nodiscard]] std::uint32_t VerifyWithDots(const char* name, PKG_READER_S* package);
