#include "tools/mkpkg/messages.h"

#include <cstdio>

#include "tools/mkpkg/exit_status.h"

namespace mkpkg {

int Fail(int status, const std::string& problem) {
  (void)std::fprintf(stderr, "mkpkg: %s\n", problem.c_str());
  return status;
}

void Warn(const std::string& text) { (void)std::fprintf(stderr, "mkpkg: warning: %s\n", text.c_str()); }

int EndOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return kDone;
  return Fail(kCannotWrite, "cannot write to standard output");
}

}  // namespace mkpkg
