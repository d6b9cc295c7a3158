#include "pkg/install/boot_image.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fs/names/name_rules.h"
#include "pkg/format/compatibility.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/package_text.h"
#include "pkg/identity/system_identity.h"
#include "shell/tool/child_process.h"
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/new_file.h"
#include "util/unique_handle.h"

namespace {

constexpr std::size_t kPathRoom = kMediaPrefix.size() + kBootImageNameRoom;
constexpr int kLongestReading = 30'000;  // milliseconds

void ReadVersion(char* version) {
  char name[kBootImageNameRoom];
  FixedText<kPathRoom> path;
  ESH_GetBootImageName(name);  // without a name there is no such package either
  path.Append("%s/%s", kMediaRoot, name);
  const UniquePackage package(PackageReadFileCreateByFile(path.Text()));
  const bool is_readable = package != nullptr && HasModestDescription(package.get());
  const UniqueLines description = is_readable ? OpenPackageText(package.get(), kDescriptionFile) : nullptr;
  ReadBootVersion(description.get(), version);
}

[[noreturn]] void TellVersion(int pipe) {
  (void)!std::freopen("/dev/null", "w", stderr);  // last words of the C library are not for the console
  char version[kRunningVersionRoom];
  ReadVersion(version);
  _exit(WriteAll(pipe, version, std::strlen(version)) ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace

void ReadRunningVersion(char* version) {
  version[0] = '\0';
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  ESH_TERM_OFlush();  // or a decoder that exits would print once more what the shell has said
  const pid_t child = fork();
  if (child == 0) TellVersion(writing.Get());
  writing.Reset();
  if (child < 0) return;
  // What the child does to itself, its clock included, must not keep the shell: only an answer counts.
  pollfd answer = {.fd = reading.Get(), .events = POLLIN, .revents = 0};
  const ssize_t length = poll(&answer, 1, kLongestReading) == 1 ? read(answer.fd, version, kRunningVersionRoom - 1) : 0;
  version[length < 0 ? 0 : length] = '\0';
  kill(child, SIGKILL);
  (void)ResultOfChild(child);
}
