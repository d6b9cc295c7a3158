#pragma once

#include <string>
#include <vector>

#include "device/device.h"

namespace device {

/// What a device's root file system is made from. The host is looked at once; each boot composes from it.
struct RootPlan {
  std::string root_files;            // directory whose contents are copied first
  std::vector<HostFile> copies;      // programs, libraries, terminfo entries, files that were asked for
  std::vector<std::string> applets;  // names of busybox's tools, linked in /bin where nothing else stands
  std::vector<FileText> texts;       // replacements, last
};

/// Finds everything that the root file system needs on the host.
/// @return an empty text, or one line that says what is missing.
[[nodiscard]] std::string PlanRoot(const BootOptions& options, RootPlan& plan);

/// Makes the root file system in an empty directory.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string ComposeRoot(const RootPlan& plan, const std::string& root);

}  // namespace device
