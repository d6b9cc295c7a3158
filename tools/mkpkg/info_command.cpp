#include <cstdio>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/report.h"
#include "tools/mkpkg/warnings.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg info PACKAGE\n"
    "Shows what is in a package, as the device's reader finds it: tags, files, texts, the room that an image needs\n"
    "on a device, and warnings of what a device accepts or drops without a word. Nothing is verified: see\n"
    "mkpkg check.\n"
    "\n"
    "Exit status: 0 done, 2 wrong command line, 3 a device could not open the package, 4 the text could not be\n"
    "written.\n";

int Run(const Arguments& arguments) {
  const std::string& path = arguments.Operands()[0];
  PackageModel package;
  if (std::string problem = ReadPackage(path, true, package); !problem.empty()) return Fail(kBadInput, problem);
  if (arguments.Has(kJson.name)) {
    return Conclude(
        arguments, AllWarningsFor(package, BaseName(path)), [&](JsonWriter& json) { AddReport(json, package, path); });
  }
  (void)std::fputs(TextReport(package, path).c_str(), stdout);
  return EndOutput();
}

}  // namespace

const Command kInfoCommand = {"info", kHelp, {}, {"PACKAGE"}, Run};

}  // namespace mkpkg
