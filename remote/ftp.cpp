#include <cstring>

#include "fs/file_messages.h"
#include "remote/credentials.h"
#include "remote/host_address.h"
#include "remote/local_file.h"
#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"
#include "util/result.h"

namespace {

constexpr char kFtp[] = "ftp";

std::uint32_t Transfer(const char* tool, const char* address, const char* first_file, const char* second_file) {
  ToolLine line;
  line.Append("%s -u %s -p %s %s %s %s", tool, g_szUserName, g_szPassword, address, first_file, second_file);
  const std::uint32_t verdict = RunStoppableTool(line);
  explicit_bzero(line.Text(), line.Length());  // it holds the password
  return verdict;
}

/// The line is split at blanks, and no option of the tools does harm. But a get that reads the remote name as an option
/// would take words of the user or the password for host and local file, and write anywhere on this device.
bool CouldNameAnotherTarget() {
  const bool has_blank = std::strchr(g_szUserName, ' ') != nullptr || std::strchr(g_szPassword, ' ') != nullptr;
  return has_blank && g_szRemoteFile[0] == '-';
}

std::uint32_t Get(const char* address) {
  if (CouldNameAnotherTarget()) return Refuse(kWrongName);
  TargetName target;
  const Refusal refusal = ChooseTarget(kFtp, target);
  return refusal ? *refusal : Stored(Transfer("/bin/ftpget", address, target.Text(), g_szRemoteFile), target);
}

std::uint32_t Put(const char* address) {
  char source[kNameRoom];
  const Refusal refusal = GetLocalFileFullName(kFtp, source);
  return refusal ? *refusal : Transfer("/bin/ftpput", address, g_szRemoteFile, source);
}

}  // namespace

std::uint32_t ESH_ProcFtpget() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv4Host()) return *refusal;
  return GetFTPUserPassword() == kSuccess ? Get(g_szIPv4Address) : ESH_ERR_FAIL;
}

std::uint32_t ESH_ProcFtpput() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv4Host()) return *refusal;
  return GetFTPUserPassword() == kSuccess ? Put(g_szIPv4Address) : ESH_ERR_FAIL;
}

std::uint32_t ESH_ProcFtpIPv6get() {
  const PasswordForgotten forgotten;
  if (CheckIPv6Text() || GetFTPUserPassword() != kSuccess) return ESH_ERR_FAIL;
  // Only here is "::" refused behind the credentials.
  const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host);
  return refusal ? *refusal : Get(g_szIPv6Address);
}

std::uint32_t ESH_ProcFtpIPv6put() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host)) return *refusal;
  return GetFTPUserPassword() == kSuccess ? Put(g_szIPv6Address) : ESH_ERR_FAIL;
}
