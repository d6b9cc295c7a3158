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

std::string StartScript(const BootOptions& options) {
  std::string script = "#!/bin/sh\nexec env -i PATH=/bin:/sbin HOME=/root USER=root";
  if (options.term) script += " " + ShellQuoted("TERM=" + *options.term);
  for (const std::string& variable : options.environment) script += " " + ShellQuoted(variable);
  script += std::string(" ") + kShellPath;
  for (const std::string& argument : options.arguments) script += " " + ShellQuoted(argument);
  return script + "\n";
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

}  // namespace

std::string PackageRoot(const std::string& name) {
  const std::string place = "/esh/" + name + "-root";
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache != '\0') return cache + place;
  const char* home = std::getenv("HOME");
  return (home == nullptr ? "/root" : home) + ("/.cache" + place);
}

std::string ComposeRoot(const BootOptions& options, const KindFiles& kind, const std::string& root) {
  std::vector<std::string> words{"sh",
                                 ESH_DEVICE_FILES "/make-root.sh",
                                 kind.kind,
                                 root,
                                 options.term.value_or(""),
                                 kind.system,
                                 ESH_DEVICE_PACKAGES};
  const auto copy = [&words](const HostFile& file) { words.insert(words.end(), {file.host_path, file.path}); };
  copy({options.shell, kShellPath});
  for (const HostFile& file : kind.copies) copy(file);
  for (const HostFile& file : options.host_files) copy(file);
  if (std::string said; !RunProgram(words, said)) return "the device's files cannot be put together: " + said;
  if (std::string problem = PlaceText({kStartShellPath, StartScript(options)}, root); !problem.empty()) return problem;
  for (const FileText& file : options.files)
    if (std::string problem = PlaceText(file, root); !problem.empty()) return problem;
  return "";
}

}  // namespace device
