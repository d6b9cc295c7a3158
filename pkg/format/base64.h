#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// Decodes base64 of the standard alphabet: whole groups of four characters, nothing between them, "=" only as the last
/// one or two characters of all.
/// @param out room for three bytes of each group, also where "=" stands for fewer.
/// @return the number of bytes, or none when it is no such text or there is no room.
[[nodiscard]] std::optional<std::size_t> DecodeBase64(std::string_view text, std::span<std::uint8_t> out);
