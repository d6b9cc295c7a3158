#pragma once

#include <string>
#include <vector>

#include "device/device.h"

namespace device {

class ProgramSource;

/// Where the shell looks for the library that unpacks 7z.
inline constexpr char kUn7zPath[] = "/lib/libun7z.so";

/// What a device's root file system is made from. The host is looked at once; each boot composes from it.
struct RootPlan {
  std::vector<std::string> layers;   ///< directories whose contents are copied first, in this order
  std::vector<HostFile> copies;      ///< programs, libraries, terminfo entries, files that were asked for
  std::vector<std::string> applets;  ///< names of busybox's tools, linked in /bin where nothing else stands
  std::vector<FileText> texts;       ///< replacements, last
};

/// Finds everything that the root file system needs on the host.
/// @param kind_files  directory with the files that only this kind of device has; they replace those of the options.
/// @return an empty text, or one line that says what is missing.
[[nodiscard]] std::string PlanRoot(const BootOptions& options, const std::string& kind_files,
                                   const ProgramSource& programs, RootPlan& plan);

/// Adds a copy of a host's file to a plan, unless something goes to that path already.
void AddCopy(const std::string& host_path, const std::string& path, RootPlan& plan);

/// Adds a program with its libraries to a plan.
/// @return an empty text, or one line that says what is missing.
[[nodiscard]] std::string AddProgram(const std::string& host_path, const std::string& path,
                                     const ProgramSource& programs, RootPlan& plan);

/// Makes the root file system in an empty directory.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string ComposeRoot(const RootPlan& plan, const std::string& root);

}  // namespace device
