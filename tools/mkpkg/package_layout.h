#pragma once

#include <cstddef>
#include <cstdint>

namespace mkpkg {

// Where the things stand in a package that its writer fills; words are 32 bits wide.
// A package is the main head, then for each file its file head and its data, then perhaps a signature trailer.

constexpr std::size_t kMainHeadSize = 6180;
constexpr std::size_t kFileCountAt = 4;
constexpr std::size_t kProductTagAt = 8;
constexpr std::size_t kPayloadSizeAt = 28;  // the least number of bytes that follow the main head
constexpr std::size_t kFileTableAt = 32;
constexpr std::size_t kTableEntrySize = 24;
constexpr std::size_t kMaxFiles = 128;
constexpr std::size_t kSignatureFormatAt = 3104;
constexpr std::size_t kHeadSignatureSizeAt = 3108;
constexpr std::size_t kHeadSignatureAt = 3120;
constexpr std::size_t kHeadSignatureRoom = 2048;
constexpr std::size_t kByteOrderAt = 5168;
constexpr std::size_t kAttributeAt = 5176;
constexpr std::size_t kPackageTypeAt = 5180;
constexpr std::size_t kHeadCrcAt = 6176;

// Within an entry of the file table.
constexpr std::size_t kEntryIdAt = 0;
constexpr std::size_t kEntryOffsetAt = 4;
constexpr std::size_t kEntryTotalAt = 8;
constexpr std::size_t kEntryCheckBAt = 12;
constexpr std::size_t kEntryCheckAAt = 16;

// Within a file head.
constexpr std::size_t kFileHeadSize = 340;
constexpr std::size_t kCheckAAt = 12;
constexpr std::size_t kDeviceCodeAt = 20;
constexpr std::size_t kStoredSizeAt = 24;
constexpr std::size_t kUnpackedSizeAt = 40;
constexpr std::size_t kFileByteOrderAt = 44;
constexpr std::size_t kFileNameAt = 104;
constexpr std::size_t kFileNameRoom = 224;
constexpr std::size_t kDataSizeAt = 328;
constexpr std::size_t kCheckBAt = 332;
constexpr std::size_t kPackingAt = 336;

constexpr std::uint32_t kTrailerFormat = 0xFF00A105;  // of the signature-format word; anything else: in the head
constexpr std::uint32_t kHeadFormat = 0;
constexpr std::uint32_t kHostOrder = 0xFFFFFFFF;  // of a byte-order word; 0: big-endian
constexpr std::uint32_t kStored = 0xFFFFFFFF;     // of a packing word
constexpr std::uint32_t kPacked7z = 2;
constexpr std::uint32_t kSystemPackage = 2;  // of the package-type word

constexpr std::uint32_t kImageId = 0x04000000;
constexpr std::uint32_t kCompatibilityId = 0x040000E0;
constexpr std::uint32_t kDescriptionId = 0x040000F0;

}  // namespace mkpkg
