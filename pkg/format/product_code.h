#pragma once

#include <cstdint>

inline constexpr char kVersionFile[] = "/etc/pkg/version/1_0_package";
inline constexpr char kProductTagName[] = "ProductTag";
inline constexpr char kDeviceTagName[] = "DeviceTag";
inline constexpr std::uint32_t kUnknownTag = 0xFFFFFFFF;

/// The device's product and device tag, kUnknownTag until they were found.
extern std::uint32_t g_uiProductCode;
extern std::uint32_t g_uiDeviceCode;

/// Reads a tag of the form "NAME : 0xHEX" from the first line of a version file that holds its name in any case.
/// @return the tag, or kUnknownTag: no file, no such line, or one that is written otherwise.
[[nodiscard]] std::uint32_t ReadVersionTag(const char* version_file, const char* name);

/// The device's product tag, read on first use. @return kUnknownTag when there is none.
[[nodiscard]] std::uint32_t ProductCode();

/// The device's device tag, read on first use. @return kUnknownTag when there is none.
[[nodiscard]] std::uint32_t DeviceCode();
