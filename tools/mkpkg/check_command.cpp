#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/device_verdict.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/json_writer.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/report.h"
#include "tools/mkpkg/warnings.h"

namespace mkpkg {
namespace {

constexpr char kHelp[] =
    "usage: mkpkg check --version-file=FILE --keys=DIRECTORY [--boot-image=PACKAGE] [OPTION]... PACKAGE\n"
    "Tells what a device would say to a package, with the device's own reader and verifier: whether \"display install\n"
    "package\" shows it and \"install load\" loads it; if not, which step refuses and what the device prints.\n"
    "\n"
    "  --version-file=FILE   the device's /etc/pkg/version/1_0_package, which tells its tags\n"
    "  --keys=DIRECTORY      the device's /etc/sign_pub_key\n"
    "  --boot-image=PACKAGE  the device's boot image package, for install load; without it no package is compatible\n"
    "  --name=NAME           what the operator types for the package; flash:/ and its file name without this option\n"
    "  --json                the verdict for programs\n"
    "\n"
    "Exit status: 0 the device shows and loads the package, 1 it refuses one or both, 2 wrong command line, 3 a file\n"
    "is missing, 4 the text could not be written. Warnings are printed on standard error and change no status.\n";

constexpr Option kOptions[] = {{"version-file", true}, {"keys", true}, {"boot-image", true}, {"name", true}, {"json"}};
constexpr char kMedium[] = "flash:/";

struct NamedVerdict {
  const char* command;
  DeviceVerdict verdict;
};

std::string TextOf(const NamedVerdict& named) {
  const std::string command = named.command;
  if (named.verdict.Accepts()) return command + ": accepted\n";
  return command + ": refused at step \"" + named.verdict.step + "\": " + Printable(named.verdict.reason) + "\n" +
         "  the device prints: " + Printable(named.verdict.line) + "\n";
}

std::string JsonOf(const NamedVerdict (&verdicts)[2]) {
  JsonWriter json;
  json.BeginObject();
  for (const auto& [command, verdict] : verdicts) {
    json.BeginObject(command);
    json.Flag("accepted", verdict.Accepts());
    if (!verdict.Accepts()) {
      json.Text("step", verdict.step);
      json.Text("reason", verdict.reason);
      json.Text("line", verdict.line);
    }
    json.EndObject();
  }
  json.EndObject();
  return json.Written();
}

std::string MissingInput(const Arguments& arguments) {
  struct stat status {};
  for (const char* file : {"version-file", "boot-image"}) {
    const std::string path = arguments.Value(file);
    if (arguments.Has(file) && access(path.c_str(), R_OK) != 0) return "cannot read " + path;
  }
  const std::string keys = arguments.Value("keys");
  if (stat(keys.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return keys + " is no directory";
  const std::string& package = arguments.Operands()[0];
  return access(package.c_str(), R_OK) == 0 ? "" : "cannot read " + package;
}

void PrintWarnings(const std::string& path, const DeviceFacts& facts) {
  PackageModel package;
  if (!ReadPackage(path, false, package).empty()) return;  // the verdict says it
  for (const std::string& warning : WarningsFor(package, BaseName(facts.typed_name))) Warn(Printable(warning));
  for (const std::string& warning : SignatureWarningsFor(package)) Warn(Printable(warning));
  if (NamesWeakKey(package, facts.key_directory))
    Warn("the device's key has a public exponent below 65537: with it anybody can sign packages");
}

int Run(const Arguments& arguments) {
  if (!arguments.Has("version-file") || !arguments.Has("keys"))
    return Fail(kUsage, "--version-file and --keys are needed; see \"mkpkg check --help\"");
  if (std::string problem = MissingInput(arguments); !problem.empty()) return Fail(kBadInput, problem);
  const std::string& path = arguments.Operands()[0];
  const DeviceFacts facts = {arguments.Value("version-file"), arguments.Value("keys"), arguments.Value("boot-image"),
                             arguments.Value("name", kMedium + BaseName(path))};
  const NamedVerdict verdicts[] = {{"display install package", JudgeDisplay(path, facts)},
                                   {"install load", JudgeInstall(path, facts)}};
  const std::string report = arguments.Has("json") ? JsonOf(verdicts) : TextOf(verdicts[0]) + TextOf(verdicts[1]);
  (void)std::fputs(report.c_str(), stdout);
  PrintWarnings(path, facts);
  if (const int status = EndOutput(); status != kDone) return status;
  return verdicts[0].verdict.Accepts() && verdicts[1].verdict.Accepts() ? kDone : kRefused;
}

}  // namespace

const Command kCheckCommand = {"check", kHelp, kOptions, 1, 1, Run};

}  // namespace mkpkg
