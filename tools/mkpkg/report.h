#pragma once

#include <string>

#include "tools/mkpkg/package_model.h"

namespace mkpkg {

/// What is in a package, for people and for programs; with the room that each image needs on a device, and with the
/// warnings.
/// @param path  of the package.
[[nodiscard]] std::string TextReport(const PackageModel& package, const std::string& path);
/// The same as one JSON object.
[[nodiscard]] std::string JsonReport(const PackageModel& package, const std::string& path);

/// @return a text that is safe on a terminal: what is not printable is shown as "?".
[[nodiscard]] std::string Printable(std::string text);

}  // namespace mkpkg
