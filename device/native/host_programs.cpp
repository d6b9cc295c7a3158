#include "device/native/host_programs.h"

#include <optional>
#include <sstream>

#include "device/board/elf_file.h"
#include "device/board/host_program.h"

namespace device {

std::string HostPrograms::Find(const std::string& name) const { return FindProgram(name); }

/// The loader is asked itself, without running the program; its lines are "name => path (address)". A library names no
/// loader: this program's is asked.
std::string HostPrograms::AddLibraries(const std::string& program, RootPlan& plan) const {
  const std::optional<ElfNeeds> needs = ReadElfNeeds(program);
  if (!needs || (needs->loader.empty() && needs->libraries.empty())) return "";
  const std::string loader =
      needs->loader.empty() ? ReadElfNeeds("/proc/self/exe").value_or(ElfNeeds{}).loader : needs->loader;
  const std::optional<std::string> listing = OutputOf({loader, "--list", program});
  if (!listing) return program + " needs shared libraries that " + loader + " does not find";
  AddCopy(loader, loader, plan);
  std::istringstream lines(*listing);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t begin = line.find('/');
    if (begin == std::string::npos) continue;  // the kernel's own object has no file
    const std::string library = line.substr(begin, line.find(' ', begin) - begin);
    AddCopy(library, library, plan);
  }
  return "";
}

}  // namespace device
