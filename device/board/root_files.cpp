#include "device/board/root_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "device/board/host_program.h"
#include "device/board/program_source.h"
#include "device/board/shell_start.h"

namespace device {
namespace {

namespace fs = std::filesystem;

/// The boot image lacks this one, and the shell makes the link when it needs it.
constexpr char kMissingApplet[] = "reboot";
constexpr char kDeviceTerminfo[] = "/usr/share/terminfo";
constexpr const char* kTerminals[] = {"xterm",  "xterm-256color",  "vt100", "linux",         "ansi",
                                      "screen", "screen-256color", "tmux",  "tmux-256color", "dumb"};
constexpr const char* kEmptyDirectories[] = {
    "bin", "dev",  "dev/pts",   "dev/shm", "dev/media", "etc/pkg", "etc/sign_pub_key", "lib/modules",
    "mnt", "proc", "root/.ssh", "run",     "sbin",      "sys",     "var/tmp",          "tmp"};

std::string DirectoryOf(const std::string& path) { return fs::path(path).parent_path().string(); }

std::vector<std::string> TerminfoDirectories() {
  std::vector<std::string> directories;
  if (const char* own = std::getenv("TERMINFO")) directories.emplace_back(own);
  if (const char* home = std::getenv("HOME")) directories.push_back(std::string(home) + "/.terminfo");
  for (const char* common : {"/etc/terminfo", "/lib/terminfo", "/usr/share/terminfo"}) directories.emplace_back(common);
  return directories;
}

/// Adds a terminal's description from the host's databases. A terminal that the host does not know stays unknown.
void AddTerminal(const std::string& name, RootPlan& plan) {
  if (name.empty() || name.find('/') != std::string::npos) return;
  const std::string entry = std::string("/") + name[0] + "/" + name;
  for (const std::string& directory : TerminfoDirectories()) {
    if (access((directory + entry).c_str(), R_OK) != 0) continue;
    plan.copies.push_back({directory + entry, kDeviceTerminfo + entry});
    return;
  }
}

/// The names of the tools are asked of the host's busybox, which can be run here: Debian builds it alike for all
/// machines.
std::string AddBusybox(const ProgramSource& programs, RootPlan& plan) {
  const std::string hosts_own = FindProgram("busybox");
  if (hosts_own.empty()) return "busybox is missing (Debian package busybox-static)";
  const std::optional<std::string> names = OutputOf({hosts_own, "--list"});
  if (!names) return hosts_own + " --list failed";
  std::istringstream lines(*names);
  for (std::string name; std::getline(lines, name);)
    if (name != "busybox" && name != kMissingApplet) plan.applets.push_back(name);
  return AddProgram(programs.Find("busybox"), "/bin/busybox", programs, plan);
}

std::string CopyFile(const HostFile& file, const std::string& root) {
  const std::string target = root + file.path;
  std::error_code error;
  fs::create_directories(DirectoryOf(target), error);
  fs::copy_file(file.host_path, target, fs::copy_options::overwrite_existing, error);
  return error ? "cannot copy " + file.host_path + " to " + file.path + ": " + error.message() : "";
}

std::string PlaceText(const FileText& file, const std::string& root) {
  const std::string target = root + file.path;
  std::error_code error;
  fs::remove(target, error);  // a link would lead the text into another file
  if (!file.text) return error ? "cannot remove " + file.path + ": " + error.message() : "";
  fs::create_directories(DirectoryOf(target), error);
  std::ofstream stream(target, std::ios::binary);
  stream << *file.text;
  stream.close();
  const mode_t mode = file.text->starts_with("#!") ? 0755 : 0644;
  if (!stream || chmod(target.c_str(), mode) != 0) return "cannot write " + file.path;
  return "";
}

void LinkApplets(const RootPlan& plan, const std::string& root) {
  const std::string directory = root + "/bin/";
  for (const std::string& name : plan.applets) {
    std::string link = directory;
    link += name;
    (void)symlink("busybox", link.c_str());  // what stands there already is the device's own
  }
}

}  // namespace

void AddCopy(const std::string& host_path, const std::string& path, RootPlan& plan) {
  for (const HostFile& file : plan.copies)
    if (file.path == path) return;  // a library that another program brought already
  plan.copies.push_back({host_path, path});
}

std::string AddProgram(const std::string& host_path, const std::string& path, const ProgramSource& programs,
                       RootPlan& plan) {
  if (access(host_path.c_str(), R_OK) != 0) return host_path + " is missing or not readable";
  plan.copies.push_back({host_path, path});
  return programs.AddLibraries(host_path, plan);
}

std::string PlanRoot(const BootOptions& options, const std::string& kind_files, const ProgramSource& programs,
                     RootPlan& plan) {
  plan = RootPlan{};
  plan.layers = {options.root_files, ESH_DEVICE_PACKAGES "/root", kind_files};
  for (const std::string& layer : plan.layers)
    if (!fs::is_directory(layer)) return "the device's files are missing: " + layer;
  if (std::string problem = AddBusybox(programs, plan); !problem.empty()) return problem;
  if (std::string problem = AddProgram(options.shell, kShellPath, programs, plan); !problem.empty()) return problem;
  if (const std::string ssh = programs.Find("ssh"); !ssh.empty()) {
    if (std::string problem = AddProgram(ssh, "/bin/ssh", programs, plan); !problem.empty()) return problem;
  }
  for (const char* name : kTerminals) AddTerminal(name, plan);
  if (options.term) AddTerminal(*options.term, plan);
  for (const HostFile& file : options.host_files)
    if (std::string problem = AddProgram(file.host_path, file.path, programs, plan); !problem.empty()) return problem;
  if (!options.has_ip_stack) plan.texts.push_back({"/lib/modules/ipstack.ko", std::nullopt});
  if (!options.has_addon) plan.texts.push_back({"/lib/modules/addon.ko", std::nullopt});
  plan.texts.insert(plan.texts.end(), options.files.begin(), options.files.end());
  return "";
}

std::string ComposeRoot(const RootPlan& plan, const std::string& root) {
  std::error_code error;
  constexpr auto kHow =
      fs::copy_options::recursive | fs::copy_options::copy_symlinks | fs::copy_options::overwrite_existing;
  for (const std::string& layer : plan.layers) {
    fs::copy(layer, root, kHow, error);
    if (error) return "cannot copy " + layer + ": " + error.message();
  }
  for (const char* directory : kEmptyDirectories) fs::create_directories(root + "/" + directory, error);
  for (const HostFile& file : plan.copies)
    if (std::string problem = CopyFile(file, root); !problem.empty()) return problem;
  LinkApplets(plan, root);
  for (const FileText& file : plan.texts)
    if (std::string problem = PlaceText(file, root); !problem.empty()) return problem;
  if (chmod((root + "/tmp").c_str(), 01777) != 0) return "cannot open /tmp to everyone";
  return "";
}

}  // namespace device
