#include "remote/ftp.h"

#include <cstring>

#include "remote/credentials.h"
#include "remote/host_address.h"
#include "remote/local_file.h"
#include "remote/remote_file.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "shell/tool_line.h"

namespace {

constexpr char kFtp[] = "ftp";

/// The tools take the remote name as a word of its own. One that looks like an option would change what they do; it
/// is refused before a password is asked for in vain.
Refusal AskCredentials() {
  if (const Refusal refusal = CheckRemoteIsNoOption()) {
    return refusal;
  }
  return GetFTPUserPassword() == kSuccess ? Refusal() : ESH_ERR_FAIL;
}

std::uint32_t Transfer(const char* tool, const char* address, const char* first_file, const char* second_file) {
  ToolLine line;
  line.Append("%s -u %s -p %s %s %s %s", tool, g_szUserName, g_szPassword, address, first_file, second_file);
  const std::uint32_t verdict = RunToolLine(line, 0, 0);
  explicit_bzero(line.Text(), line.Length());  // it holds the password
  return verdict;
}

std::uint32_t Get(const char* address) {
  TargetName target;
  const Refusal refusal = ChooseTarget(kFtp, target);
  return refusal ? *refusal : Transfer("/bin/ftpget", address, target.Text(), g_szRemoteFile);
}

std::uint32_t Put(const char* address) {
  char source[kNameRoom];
  const Refusal refusal = GetLocalFileFullName(kFtp, source);
  return refusal ? *refusal : Transfer("/bin/ftpput", address, g_szRemoteFile, source);
}

}  // namespace

std::uint32_t ESH_ProcFtpget() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv4Host()) {
    return *refusal;
  }
  if (const Refusal refusal = AskCredentials()) {
    return *refusal;
  }
  return Get(g_szIPv4Address);
}

std::uint32_t ESH_ProcFtpput() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv4Host()) {
    return *refusal;
  }
  if (const Refusal refusal = AskCredentials()) {
    return *refusal;
  }
  return Put(g_szIPv4Address);
}

std::uint32_t ESH_ProcFtpIPv6get() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv6Text()) {
    return *refusal;
  }
  if (const Refusal refusal = AskCredentials()) {
    return *refusal;
  }
  if (const Refusal refusal = CheckIPv6Specified(kUnrecognizedIPv6Host)) {  // only here behind the credentials
    return *refusal;
  }
  return Get(g_szIPv6Address);
}

std::uint32_t ESH_ProcFtpIPv6put() {
  const PasswordForgotten forgotten;
  if (const Refusal refusal = CheckIPv6Host(kUnrecognizedIPv6Host)) {
    return *refusal;
  }
  if (const Refusal refusal = AskCredentials()) {
    return *refusal;
  }
  return Put(g_szIPv6Address);
}
