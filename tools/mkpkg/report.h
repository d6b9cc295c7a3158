#pragma once

#include <string>

#include "tools/mkpkg/json_writer.h"
#include "tools/mkpkg/package_model.h"

namespace mkpkg {

/// What is in a package, with the room that each image needs on a device: for people with the warnings, and as members
/// of an object for programs.
/// @param path  of the package.
[[nodiscard]] std::string TextReport(const PackageModel& package, const std::string& path);
/// The same as members of the object that `json` is in.
void AddReport(JsonWriter& json, const PackageModel& package, const std::string& path);

/// @return a text that is safe on a terminal: what is not printable is shown as "?".
[[nodiscard]] std::string Printable(std::string text);

}  // namespace mkpkg
