#pragma once

#include <cstdint>

#include "pkg/format/package_reader.h"

/// Checks an open package's main head against a product.
/// @param is_system_kind 1: bit 0 of the attribute word must be set; otherwise clear.
/// @param product_code   the device's product tag; kUnknownTag fits no package.
[[nodiscard]] PackageVerdict JudgeMainHead(std::uint32_t is_system_kind, PKG_READER_S* reader,
                                           std::uint32_t product_code);

/// Checks an open package's main head on this device. @return 0 or the code of the first check that fails.
[[nodiscard]] std::uint32_t MainHeadCheck(std::uint32_t is_system_kind, PKG_READER_S* reader);

/// All that a package must pass before it is used: its main head, then its signature. When it is good the reader is
/// sealed: it hands out nothing but bytes that the signature covers, even if the file is changed in the meantime.
/// @param product_code  as above.
/// @param key_directory where the public keys are.
[[nodiscard]] PackageVerdict JudgePackage(PKG_READER_S* reader, std::uint32_t product_code, const char* key_directory);

/// JudgePackage with this device's product and keys. @return 0 or the code of the first check that fails.
[[nodiscard]] std::uint32_t CheckPackageHead(PKG_READER_S* reader);
