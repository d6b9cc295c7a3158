#pragma once

#include <string>
#include <vector>

#include "device/device.h"

namespace device {

/// Where the shell looks for the library that unpacks 7z.
inline constexpr char kUn7zPath[] = "/lib/libun7z.so";
/// A script that becomes the shell, with its arguments and its environment.
inline constexpr char kStartShellPath[] = "/sbin/start-shell";

/// What a kind of device adds to the root file system.
struct KindFiles {
  std::string kind;              ///< name of its folder
  std::string system;            ///< directory where packages for an emulated machine were unpacked
  std::vector<HostFile> copies;  ///< a program brings its shared libraries
};

/// @return the directory, on the host, into which cmake/fetch-NAME.sh unpacks packages; it need not be there.
std::string PackageRoot(const std::string& name);

/// Makes the device's boot image, a newc archive, with the tool that makers use.
/// @param archive  where to; beside it, files are gathered meanwhile.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string MakeImage(const BootOptions& options, const KindFiles& kind, const std::string& archive);

/// @return the script that becomes the shell, see kStartShellPath.
FileText StartScript(const BootOptions& options);

/// Writes a text to its place below a directory, or removes what is there.
/// @return an empty text, or one line that says what went wrong.
[[nodiscard]] std::string PlaceText(const FileText& file, const std::string& root);

/// Copies what a medium has at its first boot into a directory that is there. @return an empty text, or the problem.
[[nodiscard]] std::string CopyContents(const Medium& medium, const std::string& place);

}  // namespace device
