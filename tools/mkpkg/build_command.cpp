#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/contents.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/warnings.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg build [--force] DESCRIPTION PACKAGE\n"
    "Makes a package from a description file. It is not signed yet. The same input gives the same bytes; entries of\n"
    "archives get the time that SOURCE_DATE_EPOCH tells, and 0 without it.\n"
    "\n"
    "  --force  replace a package that exists\n"
    "\n"
    "A description, in full in mkpkg-format(5):\n"
    "  product-tag: 0x0A100001\n"
    "  [description]\n"
    "  text: Platform version: 7.1.100\n"
    "  text: Product version: Release 1\n"
    "  [compatibility]\n"
    "  text: [boot]\n"
    "  text: 7.1.100\n"
    "  [image]\n"
    "  device-tag: 0x0A100002\n"
    "  directory: root\n"
    "  compression: gz\n"
    "\n"
    "Exit status: 0 done, 2 wrong command line, 3 the description or what it names is missing or wrong,\n"
    "4 the package could not be written.\n";

constexpr Option kOptions[] = {{"force"}};

std::string Describe(const std::string& origin, PackageContents& contents) {
  std::string text;
  PackageDescription description;
  if (std::string problem = ReadWholeFile(origin, text); !problem.empty()) return problem;
  if (std::string problem = ParseDescription(text, origin, description); !problem.empty()) return problem;
  return CollectContents(description, std::filesystem::path(origin).parent_path(), contents);
}

int Run(const Arguments& arguments) {
  const std::string& path = arguments.Operands()[1];
  if (std::error_code error; !arguments.Has("force") && std::filesystem::is_regular_file(path, error))
    return Fail(kCannotWrite, path + " exists; --force replaces it");
  PackageContents contents;
  if (std::string problem = Describe(arguments.Operands()[0], contents); !problem.empty())
    return Fail(kBadInput, problem);
  PackageModel written;
  int status = kCannotWrite;
  const FillFile write = [&](int fd) {
    std::string problem = WritePackage(contents, fd);
    if (problem.ends_with(kCannotWriteData)) return "cannot write " + path + ": " + std::strerror(errno);
    if (problem.empty()) problem = ReadPackage("/proc/self/fd/" + std::to_string(fd), true, written);
    if (!problem.empty()) status = kBadInput;
    return problem;
  };
  if (std::string problem = WriteFile(path, write, 0666, arguments.Has("force")); !problem.empty())
    return Fail(status, problem);
  return Conclude(arguments, WarningsFor(written, BaseName(path)), [&](JsonWriter& json) {
    json.Text("package", path);
    json.Number("size", written.size);
  });
}

}  // namespace

const Command kBuildCommand = {"build", kHelp, kOptions, {"DESCRIPTION", "PACKAGE"}, Run};

}  // namespace mkpkg
