#include <unistd.h>

#include <cstddef>

#include "net/network_commands.h"
#include "net/port_tools.h"
#include "shell/tool/tool_line.h"
#include "term/pager.h"
#include "util/regular_file.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kShowIPv4Table[] = "/bin/route";
constexpr char kIPv6Table[] = "/etc/pkg/route_table6";
constexpr char kWriteIPv6Table[] = "/bin/route -A inet6 -n > /etc/pkg/route_table6";

}  // namespace

std::uint32_t ESH_ProcDisIPGateway() { return RunTool(kShowIPv4Table); }

std::uint32_t ESH_ProcDisIPv6Gateway() {
  (void)ESH_SystemProc(kWriteIPv6Table);  // the file tells what came of it
  std::size_t size = 0;
  const UniqueText table(FileReadWhole(kIPv6Table, &size));
  if (table != nullptr) (void)ESH_OutString(table.get());  // a reader who has seen enough is no failure
  (void)unlink(kIPv6Table);
  return kSuccess;
}
