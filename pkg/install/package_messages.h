#pragma once

/// Formats that more than one package command prints with; each takes the name as typed.

inline constexpr char kCorrupted[] = "%s is corrupted.\r\n";
