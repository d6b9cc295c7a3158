#include "tools/mkpkg/messages.h"

#include <cstdio>

#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/report.h"

namespace mkpkg {

int Fail(int status, const std::string& problem) {
  (void)std::fprintf(stderr, "mkpkg: %s\n", problem.c_str());
  return status;
}

int EndOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return kDone;
  return Fail(kCannotWrite, "cannot write to standard output");
}

int Conclude(const Arguments& arguments, const std::vector<std::string>& warnings,
             const std::function<void(JsonWriter&)>& members) {
  if (arguments.Has(kJson.name)) {
    JsonWriter json;
    json.BeginObject();
    members(json);
    json.Texts("warnings", warnings);
    json.EndObject();
    (void)std::fputs(json.Written().c_str(), stdout);
  } else {
    for (const std::string& warning : warnings)
      (void)std::fprintf(stderr, "mkpkg: warning: %s\n", Printable(warning).c_str());
  }
  return EndOutput();
}

}  // namespace mkpkg
