#pragma once

#include <string>

#include "tools/mkpkg/description.h"
#include "tools/mkpkg/package_writer.h"

namespace mkpkg {

/// Tells what a package holds that a description is of. What it names is fetched and compressed when that is written.
/// @param base  directory that its relative paths start from.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string CollectContents(const PackageDescription& description, const std::string& base,
                                          PackageContents& contents);

}  // namespace mkpkg
