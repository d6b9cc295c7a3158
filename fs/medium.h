#pragma once

#include <cstdint>

/// A medium is mounted at /mnt/<device>. What marks it as usable is its slot link, /mnt/slot0#<device>.
inline constexpr char kSlotPrefix[] = "slot0#";

/// @param name begins with a device name. @return 1 when that medium has a slot link, else 0.
[[nodiscard]] std::uint16_t ESH_CheckDevice(const char* name);

/// Whether a name's medium is present. @param full a full name.
[[nodiscard]] bool IsOnPresentMedium(const char* full);

/// Whether a medium may hold packages: only the first unit of each kind ("flash:", "usba0:", not "usba1:").
/// @param name with or without "/mnt/". @return 1 or 0.
[[nodiscard]] std::uint16_t ESH_IsDeviceForPkgm(const char* name);

/// @return 1 when /mnt/<entry> is a directory, and not a link to one; else 0.
[[nodiscard]] std::uint16_t IsDirPath(const char* entry);

/// Makes the slot link of a medium, unless it is there already, and frees the name.
/// @param entry from malloc; the function's from here on.
void SymLinkDiskAddFree(char* entry);

/// Makes the slot links of all directories below /mnt.
void LinkMedia();
