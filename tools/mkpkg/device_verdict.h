#pragma once

#include <string>

#include "tools/mkpkg/package_model.h"

namespace mkpkg {

/// What a device has that its verdict on a package depends on.
struct DeviceFacts {
  std::string version_file;   ///< its /etc/pkg/version/1_0_package
  std::string key_directory;  ///< its /etc/sign_pub_key
  std::string boot_image;     ///< its boot image package; "": it cannot be read, so nothing is compatible
  std::string typed_name;     ///< what the operator types for the package, such as "flash:/system.bin"
};

/// What a device does with a package.
struct DeviceVerdict {
  std::string step;  ///< that refuses, or "" when none does
  std::string reason;
  std::string line;  ///< what the device prints then

  /// Whether no step refuses.
  [[nodiscard]] bool Accepts() const { return step.empty(); }
};

/// The verdict of "display install package".
/// @param path  the package on this machine.
[[nodiscard]] DeviceVerdict JudgeDisplay(const std::string& path, const DeviceFacts& facts);

/// The verdict of "install load".
[[nodiscard]] DeviceVerdict JudgeInstall(const std::string& path, const DeviceFacts& facts);

/// @return whether the key that a package is to be verified with has a public exponent below 65537.
[[nodiscard]] bool NamesWeakKey(const PackageModel& package, const std::string& key_directory);

}  // namespace mkpkg
