#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/mkpkg/pieces.h"

namespace mkpkg {

/// A way to make data smaller. The suffix of an image's name tells the device how to undo all of them but 7z, which
/// the package itself tells.
enum class Compression { kGz, kLzma, kXz, k7z };

/// @return the compression of that name: "gz", "lzma", "xz", "7z".
[[nodiscard]] std::optional<Compression> CompressionNamed(std::string_view name);

/// @return the suffix that an image compressed so must have, with its dot; "" for 7z.
[[nodiscard]] const char* SuffixOf(Compression compression);

/// Compresses what a feed gives. The same data give the same bytes, at any time.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string Compress(Compression compression, const Feed& feed, const Sink& sink);

/// Unpacks 7z data as a device does.
/// @param size  the most bytes that may come out; nothing is set aside for them.
[[nodiscard]] UniquePieces Unpack7z(std::unique_ptr<FilePieces> packed, std::uint64_t size);

/// What a device's root file system gets from an image.
struct ImageRoom {
  std::uint64_t files = 0;  ///< that are made, directories included
  std::uint64_t bytes = 0;  ///< of all regular files together
};

/// Counts what is in an image: a cpio archive, compressed or not.
/// @return nullopt when it is no such archive, or a damaged one.
[[nodiscard]] std::optional<ImageRoom> MeasureImage(Pieces& image);

}  // namespace mkpkg
