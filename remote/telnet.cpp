#include "remote/host_address.h"
#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"

namespace {

std::uint32_t Connect(const char* address) {
  ToolLine line;
  line.Append("/bin/telnet %s", address);
  return RunConnection(line);
}

}  // namespace

std::uint32_t ESH_ProcTelnet() {
  const Refusal refusal = CheckIPv4Host();
  return refusal ? *refusal : Connect(g_szIPv4Address);
}

std::uint32_t ESH_ProcTelnetIPv6() {
  const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host);
  return refusal ? *refusal : Connect(g_szIPv6Address);
}
