#include "remote/host_address.h"
#include "remote/local_file.h"
#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"

namespace {

constexpr char kTftp[] = "tftp";

std::uint32_t Get(const char* address) {
  TargetName target;
  if (const Refusal refusal = ChooseTarget(kTftp, target)) return *refusal;
  ToolLine line;
  line.Append("/bin/tftp -g -r %s -l %s %s", g_szRemoteFile, target.Text(), address);
  return Stored(RunStoppableTool(line), target);
}

std::uint32_t Put(const char* address) {
  char source[kNameRoom];
  if (const Refusal refusal = GetLocalFileFullName(kTftp, source)) return *refusal;
  ToolLine line;
  line.Append("/bin/tftp -p -l %s -r %s %s", source, g_szRemoteFile, address);
  return RunStoppableTool(line);
}

}  // namespace

std::uint32_t ESH_ProcTftpget() {
  const Refusal refusal = CheckIPv4Host();
  return refusal ? *refusal : Get(g_szIPv4Address);
}

std::uint32_t ESH_ProcTftpput() {
  const Refusal refusal = CheckIPv4Host();
  return refusal ? *refusal : Put(g_szIPv4Address);
}

std::uint32_t ESH_ProcTftpIPv6get() {
  const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host);
  return refusal ? *refusal : Get(g_szIPv6Address);
}

std::uint32_t ESH_ProcTftpIPv6put() {
  const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host);
  return refusal ? *refusal : Put(g_szIPv6Address);
}
