#pragma once

#include <cstdint>

/// Result codes of packages, besides ESH_ERR_FAIL.
inline constexpr std::uint32_t kErrPackageMismatch = 0x40010008;  ///< product tag, too many files; a symbolic link
inline constexpr std::uint32_t kErrPackageCrc = 0x40010009;       ///< main head unreadable, or not what its CRC says
inline constexpr std::uint32_t kErrPackageMemory = 0x4001000B;
inline constexpr std::uint32_t kErrPackageKind = 0x60010004;
inline constexpr std::uint32_t kErrPackageOpen = 0x20010002;

/// What a package is found to be: good, or the first thing that speaks against it, in the order of the checks.
enum class PackageVerdict {
  kGood,
  // Its name.
  kFirstUnit,  ///< the first unit of a medium alone may hold what is loaded
  kName,
  // Opening it.
  kCannotOpen,  ///< no such file, not a regular one, or not readable
  kNoMainHead,  ///< shorter than a main head
  kByteOrder,
  kTooManyFiles,
  kNoMemory,
  kPackageType,  ///< not that of what is loaded
  // Its main head.
  kProductTag,  ///< made for another product, or this device does not know what it is
  kKind,        ///< the attribute word does not fit
  kHeadCrc,
  // Its signature.
  kLink,                ///< its path is a symbolic link
  kReplaced,            ///< its path has come to name another file
  kShorterThanPayload,  ///< than the main head says; only of packages with a trailer
  kNoTrailer,           ///< no length of one near the end
  kTrailerLength,       ///< more than the file has behind the main head, or 0
  kTrailerHoldsNul,
  kTrailerForm,
  kSignatureText,    ///< not base64, or too long
  kSignatureLength,  ///< more than the main head has room for
  kKeyName,          ///< not the plain name of a file
  kKeyFile,          ///< no such key, a symbolic link, or of a wrong size
  kKeyValue,         ///< numbers with which anybody can sign
  kUnreadable,       ///< the medium failed, or the file changed
  kWrongSignature,   ///< not made with this key, or for other bytes
  // What is in it.
  kCompatibilityList,  ///< none
  kCompatible,         ///< not with the boot image
  kDeviceTag,          ///< this device does not know its own
  kImage,              ///< none for this device, or one without data
  kImageName,
  kDescription,  ///< none to be shown
};

/// @return 0 for kGood, otherwise the code with which a package of this verdict is refused.
[[nodiscard]] std::uint32_t ResultOf(PackageVerdict verdict);

/// @return what the shell prints when it refuses a package of this verdict; "%s" stands for its name as typed.
[[nodiscard]] const char* LineOfRefusal(PackageVerdict verdict);
