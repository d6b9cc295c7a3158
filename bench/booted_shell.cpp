#include "bench/booted_shell.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "bench/measure.h"
#include "tests/support/private_root.h"

namespace fs = std::filesystem;

void PrepareDevice() {
  const std::string failure = EnterPrivateRoot();
  Require(failure.empty(), failure.c_str());
  fs::remove("/bin");  // it was a link to the machine's, which a shell that fails to start would change
  fs::create_directory("/bin");
  fs::create_symlink(std::string(kMachine) + "/bin/busybox", "/bin/busybox");
  AddMedium("flash:");
  WriteFile("/proc/modules", "addon 16384 0 - Live 0x0\n");
  WriteFile("/etc/pkg/esh/mount.sh", "#!/bin/busybox sh\n");
  fs::permissions("/etc/pkg/esh/mount.sh", fs::perms::owner_all);
}

std::string ShellOnDevice(const char* program) { return kMachine + fs::absolute(program).string(); }

void Execute(std::vector<std::string> words) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execv(arguments[0], arguments.data());
}

void BecomeShell(const std::vector<std::string>& command) {
  const std::string_view console(ttyname(STDIN_FILENO));
  WriteFile("/etc/pkg/esh/ttyname.conf", std::string(console.substr(console.find("/dev"))));
  std::signal(SIGHUP, SIG_IGN);
  ioctl(STDIN_FILENO, TIOCNOTTY);
  std::signal(SIGHUP, SIG_DFL);
  Execute(command);
}

void EndFamily(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream children(kMachine + ("/proc/" + id) + "/task/" + id + "/children");
  for (pid_t child = 0; children >> child;) EndFamily(child);
  kill(process, SIGKILL);
}
