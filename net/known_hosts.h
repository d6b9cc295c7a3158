#pragma once

/// The server keys that SSH remembers.
inline constexpr char kKnownHosts[] = "/root/.ssh/known_hosts";
