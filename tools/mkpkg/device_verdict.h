#pragma once

#include <cstdint>
#include <string>
#include <vector>

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

/// An image, and the devices that take it.
struct TakenImage {
  std::uint32_t device_tag;
  std::string name;
};

/// What a device says to a package, and of a genuine one what other devices take.
struct DeviceVerdicts {
  DeviceVerdict display;  ///< "display install package"
  DeviceVerdict install;  ///< "install load"
  std::vector<TakenImage> images;
  std::vector<std::string> boot_versions;  ///< of the boot images that it is compatible with
};

/// @param path  the package on this machine.
[[nodiscard]] DeviceVerdicts JudgeForDevice(const std::string& path, const DeviceFacts& facts);

}  // namespace mkpkg
