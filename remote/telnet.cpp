#include "remote/telnet.h"

#include "remote/connection.h"
#include "remote/host_address.h"
#include "shell/command/parameter.h"

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
