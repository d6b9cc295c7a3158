#pragma once

#include <cstdint>

#include "pkg/format/package_name.h"
#include "util/unique_handle.h"

struct PKG_READER_S;

/// A system image taken out of a package.
struct SystemImage {
  UniqueText data;  ///< none when the package has no image that can be read, or one whose name is not plain
  std::uint32_t size = 0;
  char name[kImageNameRoom] = "";
};

/// Takes the first image that is made for a device.
/// @param device the device tag.
[[nodiscard]] SystemImage TakeSystemImage(PKG_READER_S* package, std::uint32_t device);

/// Unpacks an image into the root file system, by way of a file in /tmp, and frees its data. Whether that worked is
/// not told: the image of another kind of archive is left packed.
/// @return 0, or ESH_ERR_FAIL when the file in /tmp could not be removed again.
[[nodiscard]] std::uint32_t UnpackSystemImage(SystemImage& image);

/// Has the kernel give back the memory in which it keeps files: the system that starts next needs it.
void DropCaches();
