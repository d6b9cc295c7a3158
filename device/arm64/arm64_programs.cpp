#include "device/arm64/arm64_programs.h"

#include <unistd.h>

#include <optional>

#include "device/board/elf_file.h"

namespace device {
namespace {

constexpr const char* kProgramDirectories[] = {"/bin/", "/usr/bin/"};
/// The loader of the device looks in all of these.
constexpr const char* kLibraryDirectories[] = {"/lib/aarch64-linux-gnu/", "/usr/lib/aarch64-linux-gnu/"};

bool IsPlanned(const std::string& path, const RootPlan& plan) {
  for (const HostFile& file : plan.copies)
    if (file.path == path) return true;
  return false;
}

/// @return the path of a library on the device; "" when it is not among the packages below `root`.
std::string LibraryPath(const std::string& root, const std::string& name) {
  for (const char* directory : kLibraryDirectories) {
    std::string path = directory;
    path += name;
    if (access((root + path).c_str(), R_OK) == 0) return path;
  }
  return "";
}

std::string MissingLibrary(const std::string& program, const std::string& library, const std::string& root) {
  return program + " needs " + library + ", which is not in " + root;
}

}  // namespace

std::string Arm64Programs::Find(const std::string& name) const {
  for (const char* directory : kProgramDirectories) {
    std::string path = root_;
    path.append(directory).append(name);
    if (access(path.c_str(), R_OK) == 0) return path;
  }
  return "";
}

std::string Arm64Programs::AddLibraries(const std::string& program, RootPlan& plan) const {
  const std::optional<ElfNeeds> needs = ReadElfNeeds(program);
  if (!needs) return "";
  if (!needs->loader.empty()) AddCopy(root_ + needs->loader, needs->loader, plan);
  for (const std::string& library : needs->libraries) {
    const std::string path = LibraryPath(root_, library);
    if (path.empty() && needs->loader.ends_with("/" + library)) continue;  // the loader itself
    if (path.empty()) return MissingLibrary(program, library, root_);
    if (std::string problem = AddLibrary(path, plan); !problem.empty()) return problem;
  }
  return "";
}

std::string Arm64Programs::AddLibrary(const std::string& path, RootPlan& plan) const {
  if (IsPlanned(path, plan)) return "";
  AddCopy(root_ + path, path, plan);
  return AddLibraries(root_ + path, plan);
}

}  // namespace device
