#include "net/routing_table.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "net/system_proc.h"
#include "shell/child_process.h"
#include "shell/result.h"
#include "term/pager.h"
#include "util/unique_handle.h"

namespace {

constexpr char kShowIPv4Table[] = "/bin/route";
constexpr char kIPv6Table[] = "/etc/pkg/route_table6";
constexpr char kWriteIPv6Table[] = "/bin/route -A inet6 -n > /etc/pkg/route_table6";

/// The whole text of a file; NULL when it is empty or cannot be read to its end.
UniqueText ReadWhole(const char* path) {
  const UniqueFile file(std::fopen(path, "re"));
  struct stat status {};
  if (file == nullptr || fstat(fileno(file.get()), &status) != 0 || status.st_size <= 0) {
    return nullptr;
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  UniqueText text(static_cast<char*>(std::malloc(size + 1)));
  if (text == nullptr || std::fread(text.get(), 1, size, file.get()) != size) {
    return nullptr;
  }
  text.get()[size] = '\0';
  return text;
}

}  // namespace

std::uint32_t ESH_ProcDisIPGateway() { return ESH_ForkProcess(kShowIPv4Table, 1, 0); }

std::uint32_t ESH_ProcDisIPv6Gateway() {
  (void)ESH_SystemProc(kWriteIPv6Table);  // the file tells what came of it
  if (const UniqueText table = ReadWhole(kIPv6Table)) {
    (void)ESH_OutString(table.get());  // a reader who has seen enough is no failure
  }
  (void)unlink(kIPv6Table);
  return kSuccess;
}
