#pragma once

#include <cstdint>

struct VEC_S;
struct ESH_CMD_ELEMENT_S;

/// The remote side of a transfer: a file name as the server knows it.

/// Check callback: 1 when the characters and the shape of the name are legal, else 0.
[[nodiscard]] std::uint16_t CheckRemoteFile(const char* word);

/// Help callback: nothing is known of the server's files, so it lists only what may be typed.
std::uint32_t HelpRemoteFile(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element);
