#include "device/native/root_files.h"

#include <elf.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "device/native/host_program.h"

namespace device {
namespace {

namespace fs = std::filesystem;

constexpr char kShellPath[] = "/sbin/esh";
/// The boot image lacks this one, and the shell makes the link when it needs it.
constexpr char kMissingApplet[] = "reboot";
constexpr char kDeviceTerminfo[] = "/usr/share/terminfo";
constexpr const char* kTerminals[] = {"xterm",  "xterm-256color",  "vt100", "linux",         "ansi",
                                      "screen", "screen-256color", "tmux",  "tmux-256color", "dumb"};
constexpr const char* kEmptyDirectories[] = {"bin",     "dev",         "dev/pts", "dev/shm", "dev/media",
                                             "etc/pkg", "lib/modules", "mnt",     "proc",    "root",
                                             "run",     "sbin",        "sys",     "var/tmp", "tmp"};

std::string DirectoryOf(const std::string& path) { return fs::path(path).parent_path().string(); }

/// @return the loader that a program names; "" for a program that is static or no program of this machine's kind.
std::string LoaderOf(const std::string& program) {
  std::ifstream file(program, std::ios::binary);
  ElfW(Ehdr) head{};
  if (!file.read(reinterpret_cast<char*>(&head), sizeof(head)) || std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0)
    return "";
  for (unsigned i = 0; i < head.e_phnum; ++i) {
    ElfW(Phdr) part{};
    file.seekg(static_cast<std::streamoff>(head.e_phoff + i * sizeof(part)));
    if (!file.read(reinterpret_cast<char*>(&part), sizeof(part))) return "";
    if (part.p_type != PT_INTERP || part.p_filesz == 0 || part.p_filesz > PATH_MAX) continue;
    std::string loader(part.p_filesz, '\0');
    file.seekg(static_cast<std::streamoff>(part.p_offset));
    if (!file.read(loader.data(), static_cast<std::streamsize>(loader.size()))) return "";
    loader.pop_back();  // its terminating NUL
    return loader;
  }
  return "";
}

void AddCopy(const std::string& host_path, const std::string& path, RootPlan& plan) {
  for (const HostFile& file : plan.copies) {
    if (file.path == path) return;  // a library that another program brought already
  }
  plan.copies.push_back({host_path, path});
}

/// Adds the shared libraries and the loader that a program needs. The loader is asked itself, without running the
/// program; its lines are "name => path (address)".
std::string AddLibraries(const std::string& program, RootPlan& plan) {
  const std::string loader = LoaderOf(program);
  if (loader.empty()) return "";
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

std::string AddProgram(const std::string& host_path, const std::string& path, RootPlan& plan) {
  if (access(host_path.c_str(), R_OK) != 0) return host_path + " is missing or not readable";
  plan.copies.push_back({host_path, path});
  return AddLibraries(host_path, plan);
}

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

std::string AddBusybox(RootPlan& plan) {
  const std::string busybox = FindProgram("busybox");
  if (busybox.empty()) return "busybox is missing (Debian package busybox-static)";
  const std::optional<std::string> names = OutputOf({busybox, "--list"});
  if (!names) return busybox + " --list failed";
  std::istringstream lines(*names);
  for (std::string name; std::getline(lines, name);) {
    if (name != "busybox" && name != kMissingApplet) plan.applets.push_back(name);
  }
  return AddProgram(busybox, "/bin/busybox", plan);
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

std::string PlanRoot(const BootOptions& options, RootPlan& plan) {
  plan = RootPlan{};
  plan.root_files = options.root_files;
  if (!fs::is_directory(options.root_files)) return "the device's files are missing: " + options.root_files;
  if (std::string problem = AddBusybox(plan); !problem.empty()) return problem;
  if (std::string problem = AddProgram(options.shell, kShellPath, plan); !problem.empty()) return problem;
  if (const std::string ssh = FindProgram("ssh"); !ssh.empty()) {
    if (std::string problem = AddProgram(ssh, "/bin/ssh", plan); !problem.empty()) return problem;
  }
  for (const char* name : kTerminals) AddTerminal(name, plan);
  if (options.term) AddTerminal(*options.term, plan);
  for (const HostFile& file : options.host_files) {
    if (std::string problem = AddProgram(file.host_path, file.path, plan); !problem.empty()) return problem;
  }
  if (!options.has_ip_stack) plan.texts.push_back({"/lib/modules/ipstack.ko", std::nullopt});
  if (!options.has_addon) plan.texts.push_back({"/lib/modules/addon.ko", std::nullopt});
  plan.texts.insert(plan.texts.end(), options.files.begin(), options.files.end());
  return "";
}

std::string ComposeRoot(const RootPlan& plan, const std::string& root) {
  std::error_code error;
  fs::copy(plan.root_files, root, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
  if (error) return "cannot copy " + plan.root_files + ": " + error.message();
  for (const char* directory : kEmptyDirectories) fs::create_directories(root + "/" + directory, error);
  for (const HostFile& file : plan.copies) {
    if (std::string problem = CopyFile(file, root); !problem.empty()) return problem;
  }
  LinkApplets(plan, root);
  for (const FileText& file : plan.texts) {
    if (std::string problem = PlaceText(file, root); !problem.empty()) return problem;
  }
  if (chmod((root + "/tmp").c_str(), 01777) != 0) return "cannot open /tmp to everyone";
  return "";
}

}  // namespace device
