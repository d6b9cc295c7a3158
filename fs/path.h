#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A file has three names: what the user types ("flash:/a" or, relative to the working directory, "a"), the full name
/// that the system knows ("/mnt/flash:/a"), and the display name ("flash:/a"). This is the one place that converts
/// between them. Nothing here prints; results are 0 or ESH_ERR_FAIL unless a comment says otherwise. An output that is
/// NULL or has no room is a refusal; any other is cut to its size, and empty or partly built after a refusal.

/// A display name does not fit its buffer.
inline constexpr std::uint32_t kErrNameDoesNotFit = 0x2001000c;

/// Converts a name with a device, with or without a leading "/mnt" and the one character behind it.
/// @param full room for kNameRoom bytes.
[[nodiscard]] std::uint32_t expandMnt2DiskFullFileName(std::string_view name, char* full);

/// Converts a user or full name to the full name.
/// @param size room of `output` in bytes. On a refusal `output` holds whatever was built so far.
[[nodiscard]] std::uint32_t ESH_FS_GetFullFileName(const char* name, std::size_t size, char* output);

/// Converts a user or full name to the display name. @return also kErrNameDoesNotFit.
[[nodiscard]] std::uint32_t ESH_FS_GetUserFileName(const char* name, std::size_t size, char* output);

/// The same for a full name, which must begin with "/"; NULL is refused.
[[nodiscard]] std::uint32_t ESH_FS_GetUserFileNameByFullName(const char* name, std::size_t size, char* output);

/// Whether a typed name is legal and stays inside its medium.
[[nodiscard]] std::uint32_t ESH_FS_IsValidEshInputFileName(const char* name);

/// The same for a name that must carry a device.
[[nodiscard]] std::uint32_t ESH_FS_IsValidUserFileName(const char* name);

/// Whether a name begins with "/" and converts.
[[nodiscard]] std::uint32_t ESH_FS_IsValidFullFileName(const char* name);

/// Converts a legal typed name to the full name.
/// @param expectFile 1: the name must not end in "/".
[[nodiscard]] std::uint32_t ESH_InputName2FullValidName(const char* name, std::uint16_t expectFile, std::size_t size,
                                                        char* output);

/// Splits a name into its directory inside the medium and its last component; both are empty for a medium's root.
/// @param directory room for kNameRoom bytes.
/// @param file      room for kComponentRoom bytes.
[[nodiscard]] std::uint32_t ESH_FS_AnalyseFileName(const char* name, char* directory, char* file);
