#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "shell/hand_over.h"
#include "shell/startup.h"

namespace {

constexpr char kNotRoot[] = "login from a non-root user";
constexpr char kFromCommandDaemon[] = "scmd";

}  // namespace

int main(int argc, char** argv) {
  if (getuid() != 0) {
    std::puts(kNotRoot);
    return -1;
  }
  if (argc == 2 && std::strcmp(argv[1], kFromCommandDaemon) == 0) g_bIsLoadFromScmd = 1;
  // Whoever starts the shell may ignore the end of children; then no wait would tell how a tool ended.
  std::signal(SIGCHLD, SIG_DFL);
  const pid_t shell = fork();
  if (shell < 0) std::exit(EXIT_FAILURE);
  if (shell == 0) RunShell();
  WaitAndHandOver(shell);
  return EXIT_SUCCESS;
}
