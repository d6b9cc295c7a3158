#pragma once

#include <string>
#include <vector>

#include "tools/mkpkg/package_model.h"

namespace mkpkg {

/// Finds what a device accepts without a word, or refuses late, but a maker surely did not mean.
/// @param file_name  the package's name without directory, as it will be on the device.
/// @return one line for each finding; none for a package that is as it should be.
[[nodiscard]] std::vector<std::string> WarningsFor(const PackageModel& package, const std::string& file_name);

/// The same, and of its signature, which a package gets last.
[[nodiscard]] std::vector<std::string> AllWarningsFor(const PackageModel& package, const std::string& file_name);

}  // namespace mkpkg
