#include "shell/console_attach.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <initializer_list>

#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kConsoleNameFile[] = "/etc/pkg/esh/ttyname.conf";
constexpr std::size_t kConsoleNameRoom = 16;  // the scan format below reads one less
constexpr mode_t kConsoleMode = 0600;

bool ReadConsoleName(char (&name)[kConsoleNameRoom]) {
  const UniqueFile file(std::fopen(kConsoleNameFile, "re"));
  return file != nullptr && std::fscanf(file.get(), "%15s", name) == 1;
}

/// Makes the console descriptors 0, 1 and 2; what they were, and everything else below the new one, is closed.
void MoveToStandardDescriptors(int console) {
  for (int fd = 0; fd < console; ++fd) close(fd);
  for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fd != console) dup2(console, fd);
  if (console > STDERR_FILENO) close(console);
}

}  // namespace

std::uint32_t AttachConsole() {
  char name[kConsoleNameRoom];
  if (!ReadConsoleName(name)) return ESH_ERR_FAIL;
  setsid();  // a new session, so that the terminal becomes its controlling terminal when it is opened
  tcdrain(STDIN_FILENO);
  UniqueFd console(open(name, O_RDWR | O_NONBLOCK));  // a serial line without carrier must not hold up the start
  // Opening does not take a terminal that controls the starter's session already, and then no tool could be started.
  if (!console || isatty(console.Get()) == 0 || ioctl(console.Get(), TIOCSCTTY, 1) != 0) return ESH_ERR_FAIL;
  MoveToStandardDescriptors(console.Release());
  // A file system that cannot change the owner (a read-only one) still has a usable console.
  (void)!chown(name, 0, 0);
  (void)chmod(name, kConsoleMode);
  return kSuccess;
}
