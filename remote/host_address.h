#pragma once

#include <cstdint>
#include <optional>

/// What a step on the way to a connection or transfer decides: nothing while the command goes on, otherwise the
/// command's result, which ends it there.
using Refusal = std::optional<std::uint32_t>;

/// Checks of the recorded host address, before anything is run with it.

inline constexpr char kUnrecognizedIPv6Host[] = "Unrecognized IPv6 host or wrong IPv6 address.\r";

/// Refuses an IPv4 address that is no single host's, and says so.
[[nodiscard]] Refusal CheckIPv4Host();

/// Refuses an IPv6 address that does not convert, silently.
[[nodiscard]] Refusal CheckIPv6Text();

/// Refuses an IPv6 address that does not convert, silently, and the unspecified one ("::") with a message.
/// @param message printed with puts(3).
[[nodiscard]] Refusal CheckIPv6Host(const char* message);
