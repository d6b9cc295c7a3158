#pragma once

#include <cstddef>
#include <cstdint>

/// What the operator has set on the management port. The kernel is never asked back: what is saved here is applied
/// again when the port comes up.

inline constexpr char kPortName[] = "m-eth0";
inline constexpr char kCarrierFile[] = "/sys/class/net/m-eth0/carrier";
/// Room for the first line of that file, with its terminator.
inline constexpr std::size_t kCarrierLineRoom = 128;
inline constexpr char kOperationFailed[] = "Operation failed.\r";  ///< for puts(3)

enum ESH_METH_STATUS_E : std::uint32_t {
  ESH_METH_UP = 0,    ///< settings are applied at once
  ESH_METH_SHUT = 1,  ///< settings are only saved
};

/// The settings, written by the files of the address, gateway and shutdown commands; an empty text is none. A setting
/// is saved after the tool that applies it has succeeded, or without a tool while the port is shut down.
extern ESH_METH_STATUS_E g_enMethStatus;
extern char g_szMth0IPv4Add[16];
extern char g_szMth0IPv4Mask[16];
extern char g_szMth0IPv4Gateway[16];
extern char g_szMth0IPv6Add[46];
extern char g_szMth0IPv6Per[5];
extern char g_szMth0IPv6Gateway[46];

/// Whether settings are only saved for now.
[[nodiscard]] inline bool IsPortShut() { return g_enMethStatus == ESH_METH_SHUT; }
/// Whether one of the texts above is set.
[[nodiscard]] inline bool IsSaved(const char* setting) { return setting[0] != '\0'; }

/// Note a setting or that there is none; no tool runs. Texts are cut to their room.
void SaveIPv4Address(const char* address, const char* mask);
void SaveIPv6Address(const char* address, const char* prefix_length);  ///< the length has no "/"
void ForgetIPv4Address();                                              ///< and its mask
void ForgetIPv6Address();                                              ///< and its prefix length
void ForgetIPv4Gateway();                                              ///< the address stays
void ForgetIPv6Gateway();                                              ///< the address stays
