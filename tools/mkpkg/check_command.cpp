#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/device_verdict.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/messages.h"
#include "tools/mkpkg/report.h"
#include "tools/mkpkg/warnings.h"
#include "util/unique_handle.h"

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
    "\n"
    "Exit status: 0 the device shows and loads the package, 1 it refuses one or both, 2 wrong command line, 3 a file\n"
    "is missing, 4 the text could not be written. Warnings are printed on standard error and change no status.\n";

constexpr Option kOptions[] = {{"version-file", true}, {"keys", true}, {"boot-image", true}, {"name", true}};
constexpr char kMedium[] = "flash:/";

std::string TextOf(const char* command, const DeviceVerdict& verdict) {
  if (verdict.Accepts()) return std::string(command) + ": accepted\n";
  return std::string(command) + ": refused at step \"" + verdict.step + "\": " + Printable(verdict.reason) + "\n" +
         "  the device prints: " + Printable(verdict.line) + "\n";
}

std::string TextOf(const DeviceVerdicts& verdicts) {
  std::string text = TextOf("display install package", verdicts.display) + TextOf("install load", verdicts.install);
  for (const TakenImage& image : verdicts.images)
    text += "devices of tag " + HexWord(image.device_tag) + " take image " + Printable(image.name) + "\n";
  for (const std::string& version : verdicts.boot_versions)
    text += "boot images of version " + Printable(version) + " take it\n";
  return text;
}

void AddVerdict(JsonWriter& json, const char* command, const DeviceVerdict& verdict) {
  json.BeginObject(command);
  json.Flag("accepted", verdict.Accepts());
  if (!verdict.Accepts()) {
    json.Text("step", verdict.step);
    json.Text("reason", verdict.reason);
    json.Text("line", verdict.line);
  }
  json.EndObject();
}

void AddVerdicts(JsonWriter& json, const DeviceVerdicts& verdicts) {
  AddVerdict(json, "display_install_package", verdicts.display);
  AddVerdict(json, "install_load", verdicts.install);
  json.BeginArray("images");
  for (const TakenImage& image : verdicts.images) {
    json.BeginObject();
    json.Number("device_tag", image.device_tag);
    json.Text("name", image.name);
    json.EndObject();
  }
  json.EndArray();
  json.Texts("boot_versions", verdicts.boot_versions);
}

std::string MissingInput(const Arguments& arguments) {
  struct stat status {};
  const std::string& package = arguments.Operands()[0];
  for (const std::string& path : {arguments.Value("version-file"), arguments.Value("boot-image", package), package})
    if (access(path.c_str(), R_OK) != 0) return "cannot read " + path + ": " + std::strerror(errno);
  const std::string keys = arguments.Value("keys");
  return stat(keys.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? "" : keys + " is no directory";
}

std::vector<std::string> WarningsOf(const std::string& path, const DeviceFacts& facts) {
  PackageModel package;
  if (!ReadPackage(path, false, package).empty()) return {};  // the verdict says it
  return AllWarningsFor(package, BaseName(facts.typed_name));
}

int Run(const Arguments& arguments) {
  if (!arguments.Has("version-file") || !arguments.Has("keys"))
    return Fail(kUsage, "--version-file and --keys are needed; see \"mkpkg check --help\"");
  if (std::string problem = MissingInput(arguments); !problem.empty()) return Fail(kBadInput, problem);
  const std::string& path = arguments.Operands()[0];
  const DeviceFacts facts = {arguments.Value("version-file"), arguments.Value("keys"), arguments.Value("boot-image"),
                             arguments.Value("name", kMedium + BaseName(path))};
  const UniqueText target(realpath(path.c_str(), nullptr));  // a link here is none on the device
  const DeviceVerdicts verdicts = JudgeForDevice(target == nullptr ? path : target.get(), facts);
  if (!arguments.Has(kJson.name)) (void)std::fputs(TextOf(verdicts).c_str(), stdout);
  const int status =
      Conclude(arguments, WarningsOf(path, facts), [&](JsonWriter& json) { AddVerdicts(json, verdicts); });
  if (status != kDone) return status;
  return verdicts.display.Accepts() && verdicts.install.Accepts() ? kDone : kRefused;
}

}  // namespace

const Command kCheckCommand = {"check", kHelp, kOptions, {"PACKAGE"}, Run};

}  // namespace mkpkg
