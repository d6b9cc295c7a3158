#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cctype>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>

#include "tests/support/console.h"

namespace {

namespace fs = std::filesystem;

/// The program behind ./run.
using NativeRelay = testing::Test;

/// Calls visit(ID, directory in /proc) for each process. One may end meanwhile.
template <typename Visit>
void ForEachProcess(Visit visit) {
  for (const auto& entry : fs::directory_iterator("/proc"))
    if (const std::string id = entry.path().filename(); std::isdigit(id[0]) != 0) visit(id, entry.path());
}

/// The PID namespace of a process; "" when it has ended.
std::string NamespaceOf(const fs::path& process) {
  std::error_code gone;
  return fs::read_symlink(process / "ns/pid", gone).string();
}

/// The PID namespaces of what a process has started, at any remove: of the board, and of the device on it.
std::set<std::string> NamespacesBelow(pid_t ancestor) {
  std::set<std::string> family{std::to_string(ancestor)};
  std::set<std::string> spaces;
  for (std::size_t known = 0; known != family.size();) {
    known = family.size();
    ForEachProcess([&](const std::string& id, const fs::path& process) {
      std::string stat;
      std::getline(std::ifstream(process / "stat"), stat);
      const std::size_t parent = stat.rfind(')') + 4;  // behind ") S "
      if (parent >= stat.size() || !family.contains(stat.substr(parent, stat.find(' ', parent) - parent))) return;
      family.insert(id);
      spaces.insert(NamespaceOf(process));
    });
  }
  spaces.erase("");
  return spaces;
}

bool AreUsed(const std::set<std::string>& spaces) {
  bool used = false;
  ForEachProcess([&](const std::string& /*id*/, const fs::path& process) {
    used = used || spaces.contains(NamespaceOf(process));
  });
  return used;
}

TEST_F(NativeRelay, LeavesNothingBehindHoweverItEnds) {
  const struct {
    const char* how;
    void (*leave)(Console& terminal);
  } kWays[] = {
      {"Ctrl+\\", [](Console& terminal) { terminal.Type("\x1c"); }},
      {"the launcher is killed", [](Console& terminal) { kill(terminal.Child(), SIGKILL); }},
      {"the terminal is closed",
       [](Console& terminal) { dup2(UniqueFd(open("/dev/null", O_RDWR)).Get(), terminal.ConsoleFd()); }},
  };
  for (const auto& [how, leave] : kWays) {
    Console terminal([] { execl(ESH_DEVICE_PROGRAM, ESH_DEVICE_PROGRAM, nullptr); });
    terminal.Expect("<boot>");
    const std::set<std::string> spaces = NamespacesBelow(terminal.Child());
    EXPECT_EQ(spaces.size(), 2U) << how;
    leave(terminal);
    bool used = true;
    for (int tries = 0; tries < 500 && used; used = AreUsed(spaces), ++tries) usleep(20000);
    EXPECT_FALSE(used) << how;
  }
}

TEST_F(NativeRelay, TypesALineOfAPipeWheneverTheConsoleWaits) {
  const std::string command =
      std::string("printf 'dir\\nreboot\\nn\\nsystem-view' | timeout 200 ") + ESH_DEVICE_PROGRAM;
  std::FILE* pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): as an operator would pipe
  ASSERT_NE(pipe, nullptr);
  std::string printed;
  for (int byte = 0; (byte = std::getc(pipe)) != EOF;) printed += static_cast<char>(byte);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_NE(printed.find("Directory of flash:"), std::string::npos);
  EXPECT_NE(printed.find("System View"), std::string::npos) << printed;
}

}  // namespace
