#include "net/known_hosts.h"
#include "remote/credentials.h"
#include "remote/host_address.h"
#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"
#include "util/result.h"

namespace {

std::uint32_t Connect(const char* address) {
  const char* user = GetSSHUserName();
  if (user == nullptr) return kSuccess;
  ToolLine line;
  line.Append("/bin/ssh %s -l %s", address, user);
  return RunConnection(line);
}

}  // namespace

std::uint32_t ESH_ProcSsh2() {
  const Refusal refusal = CheckIPv4Host();
  return refusal ? *refusal : Connect(g_szIPv4Address);
}

std::uint32_t ESH_ProcSsh2IPv6() {
  const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host);
  return refusal ? *refusal : Connect(g_szIPv6Address);
}

std::uint32_t ESH_ProcResetPublicKeySsh() { return ForgetKnownHosts(); }
