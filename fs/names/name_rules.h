#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Most characters of a user or full name, of one component of it (a device name is one, its colon counted), and of
/// a typed argument.
inline constexpr std::size_t kMaxName = 4095;
inline constexpr std::size_t kMaxComponent = 255;
inline constexpr std::size_t kMaxTypedName = 512;

/// Buffers that hold them.
inline constexpr std::size_t kNameRoom = kMaxName + 1;
inline constexpr std::size_t kComponentRoom = kMaxComponent + 1;

/// Where all media are mounted, and that with its slash.
inline constexpr char kMediaRoot[] = "/mnt";
inline constexpr std::string_view kMediaPrefix = "/mnt/";

/// Checks characters and shape of any name: 1 to 4095 characters from 0x20 on, none of "'*<>?\|, no empty component,
/// none longer than 255, and one ":" at most, which ends the first component. @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t ESH_FS_IsValidFileName(const char* name);

/// Checks a device name such as "flash:" or "slot0#flash:", more strictly than any other component.
[[nodiscard]] bool IsValidDeviceName(std::string_view device);

/// The device name that a name begins with, its colon included; empty when there is no colon.
[[nodiscard]] std::string_view DeviceNameOf(std::string_view name);

/// Whether a device is the first unit of its kind, which alone may hold packages ("flash:", "usba0:", not "usba1:").
[[nodiscard]] bool IsFirstUnit(std::string_view device);

/// Whether a directory's entry is the directory itself or its parent.
[[nodiscard]] constexpr bool IsDotOrDotDot(std::string_view entry) { return entry == "." || entry == ".."; }

/// Whether a full name has a component that begins with a dot and is neither "." nor "..".
/// @return 0 when it is visible, ESH_ERR_FAIL when hidden.
[[nodiscard]] std::uint32_t ESH_IsVisibleFullFileName(const char* name);

/// @return 1 when the name may be a file's, that is when it does not end in "/"; else 0.
[[nodiscard]] std::uint16_t ESH_IsExpectFile(const char* name);

/// Takes the double quotes off a typed name with blanks. A name without blanks is copied as it is, quotes included:
/// they are for names with blanks only.
/// @param length    of `typed`; more than 512 is refused.
/// @param maxLength in: most characters of the result; out: its length.
/// @param output    room for maxLength + 1 bytes.
/// @return 0 or ESH_ERR_FAIL.
[[nodiscard]] std::uint32_t ESH_FS_ConvertToValidStr(const char* typed, std::uint32_t length, std::uint32_t* maxLength,
                                                     char* output);

/// Cuts a name just behind its last "/"; a name without one becomes empty.
void ESH_GetParentDir(char* name);

/// A full name less its last "/" and what follows it.
[[nodiscard]] std::string_view ParentOf(std::string_view full);

/// What stands behind the last "/" of a name; all of it when there is none.
[[nodiscard]] std::string_view LastComponent(std::string_view name);

/// Copies into a fixed buffer of `size` bytes, which may be none. A text that fits leaves the rest of the buffer zero,
/// any other is cut.
void MyStrlcpy(const char* source, std::size_t size, char* destination);
