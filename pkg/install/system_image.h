#pragma once

#include <cstdint>

#include "pkg/format/package_name.h"
#include "util/unique_handle.h"

/// A system image taken out of a package.
struct SystemImage {
  UniqueText data;
  std::uint32_t size = 0;
  char name[kImageNameRoom] = "";
};

/// Unpacks an image into the root file system, by way of a file in /tmp, and frees its data. Whether that worked is
/// not told: the image of another kind of archive is left packed.
/// @return 0, or ESH_ERR_FAIL when the file in /tmp could not be removed again.
[[nodiscard]] std::uint32_t UnpackSystemImage(SystemImage& image);

/// Has the kernel give back the memory in which it keeps files: the system that starts next needs it.
void DropCaches();
