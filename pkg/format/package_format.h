#pragma once

#include <cstddef>
#include <cstdint>

/// The layout of a package file: a main head with a table of contained files, then each contained file behind a head of
/// its own. Integers are unsigned and big-endian, unless a head's byte-order word says that they are in host order.
/// What is called `words...` has no meaning to this system; it is converted and kept.

inline constexpr std::uint32_t kMaxPackageFiles = 128;
inline constexpr std::size_t kHeadSignatureRoom = 2048;
inline constexpr std::size_t kContainedNameRoom = 224;

/// Values of the byte-order word. A main head with another value is refused; a file head then counts as big-endian.
inline constexpr std::uint32_t kBigEndianOrder = 0;
inline constexpr std::uint32_t kHostOrder = 0xFFFFFFFF;

/// Signature format of a package with a fingerprint trailer; any other value: signed in the main head.
inline constexpr std::uint32_t kTrailerSigned = 0xFF00A105;

inline constexpr std::uint32_t kSystemPackage = 2;  ///< package type

/// File IDs.
inline constexpr std::uint32_t kSystemImageFile = 0x04000000;  ///< one for each device code
inline constexpr std::uint32_t kCompatibilityFile = 0x040000E0;
inline constexpr std::uint32_t kDescriptionFile = 0x040000F0;

/// Values of the compression word; any other yields no data.
inline constexpr std::uint32_t kStoredAsIs = 0xFFFFFFFF;
inline constexpr std::uint32_t kPacked7z = 2;

/// One row of the file table.
struct PackageFileEntry {
  std::uint32_t file_id;
  std::uint32_t head_offset;   ///< of the file's head, from the start of the package
  std::uint32_t total_length;  ///< PackageFileHead::data_length plus the head's own size
  std::uint32_t check_b;       ///< equals PackageFileHead::check_b
  std::uint32_t check_a;       ///< equals PackageFileHead::check_a
  std::uint32_t spare;
};

struct PackageMainHead {
  std::uint32_t words0;
  std::uint32_t file_count;
  std::uint32_t product_tag;
  std::uint32_t words12[3];
  std::uint16_t half_words24[2];
  std::uint32_t minimum_payload;  ///< a package with a trailer has at least so many bytes behind the main head
  PackageFileEntry files[kMaxPackageFiles];  ///< only the first file_count rows are converted and used
  std::uint32_t signature_format;
  std::uint32_t signature_length;  ///< of `signature`, in bytes
  std::uint32_t words3112[2];
  std::uint8_t signature[kHeadSignatureRoom];
  std::uint32_t byte_order;
  std::uint32_t words5172;
  std::uint32_t attributes;
  std::uint32_t package_type;
  std::uint32_t reserved[248];
  std::uint32_t crc;  ///< of all bytes before it, as they are stored
};

struct PackageFileHead {
  std::uint32_t words0[3];
  std::uint32_t check_a;
  std::uint32_t words16;
  std::uint32_t device_code;
  std::uint32_t stored_size;  ///< bytes of data behind this head
  std::uint32_t words28[3];
  std::uint32_t unpacked_size;  ///< of a file packed with 7z
  std::uint32_t byte_order;
  std::uint32_t words48[14];
  char name[kContainedNameRoom];
  std::uint32_t data_length;
  std::uint32_t check_b;
  std::uint32_t compression;
};

inline constexpr std::size_t kMainHeadSize = 6180;
inline constexpr std::size_t kFileHeadSize = 340;

static_assert(sizeof(PackageFileEntry) == 24);
static_assert(sizeof(PackageMainHead) == kMainHeadSize);
static_assert(offsetof(PackageMainHead, minimum_payload) == 28);
static_assert(offsetof(PackageMainHead, files) == 32);
static_assert(offsetof(PackageMainHead, signature_format) == 3104);
static_assert(offsetof(PackageMainHead, signature) == 3120);
static_assert(offsetof(PackageMainHead, byte_order) == 5168);
static_assert(offsetof(PackageMainHead, attributes) == 5176);
static_assert(offsetof(PackageMainHead, reserved) == 5184);
static_assert(offsetof(PackageMainHead, crc) == 6176);
static_assert(sizeof(PackageFileHead) == kFileHeadSize);
static_assert(offsetof(PackageFileHead, check_a) == 12);
static_assert(offsetof(PackageFileHead, device_code) == 20);
static_assert(offsetof(PackageFileHead, stored_size) == 24);
static_assert(offsetof(PackageFileHead, unpacked_size) == 40);
static_assert(offsetof(PackageFileHead, byte_order) == 44);
static_assert(offsetof(PackageFileHead, name) == 104);
static_assert(offsetof(PackageFileHead, data_length) == 328);

/// Converts the integers of a big-endian main head to host order, or back.
/// @param file_count rows of the file table to convert, in host order; at most kMaxPackageFiles.
void ConvertMainHead(PackageMainHead& head, std::uint32_t file_count);

/// Converts the integers of a big-endian file head to host order, or back.
void ConvertFileHead(PackageFileHead& head);
