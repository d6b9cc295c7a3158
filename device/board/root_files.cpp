#include "device/board/root_files.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "device/board/process.h"

namespace device {
namespace {

namespace fs = std::filesystem;

constexpr char kShellPath[] = "/sbin/esh";
constexpr char kGatherFiles[] = ESH_DEVICE_FILES "/gather-files.sh";

}  // namespace

std::string PackageRoot(const std::string& name) {
  const std::string place = "/esh/" + name + "-root";
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache != '\0') return cache + place;
  const char* home = std::getenv("HOME");
  return (home == nullptr ? "/root" : home) + ("/.cache" + place);
}

std::string MakeImage(const BootOptions& options, const KindFiles& kind, const std::string& archive) {
  const std::string files = archive + ".files";
  std::vector<std::string> words{kGatherFiles, kind.kind,          files, options.term.value_or(""),
                                 kind.system,  ESH_DEVICE_PACKAGES};
  for (const std::vector<HostFile>& copies : {kind.copies, options.host_files})
    for (const HostFile& file : copies) words.insert(words.end(), {file.host_path, file.path});
  std::string said;
  if (!RunProgram(words, said)) return "the device's files cannot be gathered: " + said;
  for (const FileText& file : options.files)
    if (std::string problem = PlaceText(file, files); !problem.empty()) return problem;

  words = {ESH_IMAGE_MAKE,         "--part", "--sysroot", kind.system.empty() ? "/" : kind.system, options.shell,
           files + "/bin/busybox", files,    archive};
  const bool is_made = RunProgram(words, said);
  std::error_code error;
  fs::remove_all(files, error);
  return is_made ? "" : "the device's boot image cannot be made: " + said;
}

FileText StartScript(const BootOptions& options) {
  std::string script = "#!/bin/sh\nexec env -i PATH=/bin:/sbin HOME=/root USER=root";
  if (options.term) script += " " + ShellQuoted("TERM=" + *options.term);
  for (const std::string& variable : options.environment) script += " " + ShellQuoted(variable);
  script += std::string(" ") + kShellPath;
  for (const std::string& argument : options.arguments) script += " " + ShellQuoted(argument);
  return {kStartShellPath, script + "\n"};
}

std::string PlaceText(const FileText& file, const std::string& root) {
  const fs::path target = root + file.path;
  std::error_code error;
  fs::remove(target, error);  // a link would lead the text into another file
  if (!file.text) return error ? "cannot remove " + file.path + ": " + error.message() : "";
  fs::create_directories(target.parent_path(), error);
  std::ofstream stream(target, std::ios::binary);
  stream << *file.text;
  stream.close();
  const mode_t mode = file.text->starts_with("#!") ? 0755 : 0644;
  return stream && chmod(target.c_str(), mode) == 0 ? "" : "cannot write " + file.path;
}

std::string CopyContents(const Medium& medium, const std::string& place) {
  std::error_code error;
  fs::copy(medium.contents, place, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
  return error ? "cannot fill " + medium.name + " from " + medium.contents + ": " + error.message() : "";
}

}  // namespace device
