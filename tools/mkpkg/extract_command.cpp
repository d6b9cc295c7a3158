#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "pkg/format/package_reader.h"
#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/package_model.h"
#include "tools/mkpkg/report.h"
#include "tools/mkpkg/verdict_text.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg extract PACKAGE DIRECTORY\n"
    "Writes the files of a package into a directory, which is made if it is missing, and prints their paths. 7z data\n"
    "are unpacked. A file whose name cannot be used, or was used already, is named by its place and ID, such as\n"
    "3-04000000. Files that exist are not replaced. Nothing is verified: see mkpkg check.\n"
    "\n"
    "Exit status: 0 done, 2 wrong command line, 3 a device could not open the package, or gets no data of a file (the\n"
    "others are written), 4 a file could not be written.\n";

/// A name that stays inside the directory.
std::string SafeName(const ContainedFile& file, std::size_t place, const std::vector<std::string>& used) {
  const std::string& name = file.name;
  const bool usable = !name.empty() && name[0] != '.' && name.find('/') == std::string::npos &&
                      Printable(name) == name && std::find(used.begin(), used.end(), name) == used.end();
  if (usable) return name;
  char numbered[sizeof("128-04000000")];
  (void)std::snprintf(numbered, sizeof(numbered), "%zu-%08X", (place + 1) % 1000, file.id);
  return numbered;
}

int Run(const Arguments& arguments) {
  const std::string& path = arguments.Operands()[0];
  const std::string& directory = arguments.Operands()[1];
  PKG_READER_S* opened = nullptr;
  const PackageVerdict verdict = OpenPackage(path.c_str(), opened);
  const UniquePackage reader(opened);
  if (verdict != PackageVerdict::kGood) return Fail(kBadInput, path + ": " + VerdictTextOf(verdict).reason);
  if (mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST)
    return Fail(kCannotWrite, "cannot make " + directory + ": " + std::strerror(errno));
  int status = kDone;
  std::vector<std::string> used;
  std::vector<std::string> targets;
  for (std::uint32_t place = 0; place < reader->head.file_count; ++place) {
    ContainedFile file;
    const UniquePieces data = OpenContained(reader.get(), reader->head.files[place], file);
    const std::string name = SafeName(file, place, used);
    const std::string target = std::string(directory).append("/").append(name);
    std::string problem = file.problem;
    if (data)
      problem = WriteFile(
          target, [&](int fd) { return FeedPieces(*data, IntoFile(fd, target)); }, 0666, false);
    if (!data || !data->Problem().empty()) {
      status = Fail(kBadInput, std::string(name).append(" of ").append(path).append(": ").append(problem));
      continue;
    }
    if (!problem.empty()) return Fail(kCannotWrite, problem);
    used.push_back(name);
    targets.push_back(target);
    if (!arguments.Has(kJson.name)) std::printf("%s\n", target.c_str());
  }
  return std::max(status, Conclude(arguments, {}, [&](JsonWriter& json) { json.Texts("files", targets); }));
}

}  // namespace

const Command kExtractCommand = {"extract", kHelp, {}, {"PACKAGE", "DIRECTORY"}, Run};

}  // namespace mkpkg
