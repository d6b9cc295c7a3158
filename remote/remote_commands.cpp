#include "remote/remote_commands.h"

#include "fs/help_callbacks.h"
#include "fs/user_file.h"
#include "remote/remote_file.h"
#include "shell/command/command_table.h"
#include "shell/command/parameter.h"

namespace {

constexpr CommandWord IPv4(const char* help) { return Param(ESH_ELEM_IPV4, "X.X.X.X", help, ESH_RecordIPv4); }
constexpr CommandWord IPv6(const char* help) { return Param(ESH_ELEM_IPV6, "X:X::X:X", help, ESH_RecordIPv6); }
constexpr CommandWord Count(const char* help) {
  return Param(ESH_ELEM_INTEGER, "INTEGER<1-2147483647>", help, ESH_RecordCount);
}
constexpr CommandWord Size(const char* help) {
  return Param(ESH_ELEM_INTEGER, "INTEGER<20-8100>", help, ESH_RecordSize);
}
constexpr CommandWord FileName(const char* help, ESH_CMD_HELP_F list_values, ESH_CMD_CHECK_F check,
                               ESH_CMD_RECORD_F record) {
  return Param(ESH_ELEM_STRING, "STRING<1-511>", help, record, check, list_values);
}

constexpr CommandWord kIPv6 = Word("ipv6", "IPv6 information");

constexpr CommandWord kTelnet = Word("telnet", "Establish a telnet connection");
constexpr CommandWord kTelnetServer = IPv4("IP address of telnet server");
constexpr CommandWord kTelnetServer6 = IPv6("IPv6 address of telnet server");

constexpr CommandWord kSsh2 = Word("ssh2", "Establish a secure shell (SSH) connection");
constexpr CommandWord kSshServer = IPv4("IP address of SSH server");
constexpr CommandWord kSshServer6 = IPv6("IPv6 address of SSH server");
constexpr CommandWord kReset = Word("reset", "Reset operation");
constexpr CommandWord kSsh = Word("ssh", "Secure Shell (SSH) module");
constexpr CommandWord kPublicKey = Word("public-key", "Clear the locally saved SSH server public keys");

// Some of the texts end in a blank.
constexpr CommandWord kFtp = Word("ftp", "Establish a FTP connection");
constexpr CommandWord kFtpServer = IPv4("IP address of FTP server ");
constexpr CommandWord kFtpServer6 = IPv6("IPv6 address of FTP server");
constexpr CommandWord kTftp = Word("tftp", "Establish a TFTP connection");
constexpr CommandWord kTftpServer = IPv4("IP address of TFTP server ");
constexpr CommandWord kTftpServer6 = IPv6("IPv6 address of TFTP server");
constexpr CommandWord kGet = Word("get", "Download file from the remote host");
constexpr CommandWord kFtpPut = Word("put", "Upload file to the remote host");
constexpr CommandWord kPut = Word("put", "Upload file to the remote host ");
constexpr CommandWord kRemote = FileName("Remote file name", HelpRemoteFile, CheckRemoteFile, ESH_RecordRemoteFile);
constexpr CommandWord kTarget =
    FileName("Local file name", HelpBothFile, ESH_FS_CheckInvalidFileDir, ESH_RecordLocalFile);
constexpr CommandWord kSource =
    FileName("Local file name", HelpExistFile, ESH_FS_CheckUserManipulatedFile, ESH_RecordLocalFile);

constexpr CommandWord kPing = Word("ping", "Ping function");
constexpr CommandWord kCountOption = Word("-c", "Specify the number of echo requests to be sent");
constexpr CommandWord kSizeOption = Word("-s", "Specify the number of data bytes to be sent");
constexpr CommandWord kCount = Count("The number of times that an ICMP echo request is sent");
constexpr CommandWord kSize = Size("The length of an ICMP echo request");
constexpr CommandWord kPeer = IPv4("IP address");
constexpr CommandWord kCount6 = Count("The number of times that an echo request is sent");  // IPv6's differ
constexpr CommandWord kSize6 = Size("The length of an echo request");
constexpr CommandWord kPeer6 = IPv6("IPv6 address");

constexpr CommandRow kRemoteCommands[] = {
    {ESH_ProcTelnet, kUserView, {kTelnet, kTelnetServer}},
    {ESH_ProcTelnetIPv6, kUserView, {kTelnet, kIPv6, kTelnetServer6}},
    {ESH_ProcSsh2, kUserView, {kSsh2, kSshServer}},
    {ESH_ProcResetPublicKeySsh, kUserView, {kReset, kSsh, kPublicKey}},
    {ESH_ProcSsh2IPv6, kUserView, {kSsh2, kIPv6, kSshServer6}},
    {ESH_ProcFtpget, kUserView, {kFtp, kFtpServer, kGet, kRemote, kTarget}},
    {ESH_ProcFtpput, kUserView, {kFtp, kFtpServer, kFtpPut, kSource, kRemote}},
    {ESH_ProcFtpIPv6get, kUserView, {kFtp, kIPv6, kFtpServer6, kGet, kRemote, kTarget}},
    {ESH_ProcFtpIPv6put, kUserView, {kFtp, kIPv6, kFtpServer6, kPut, kSource, kRemote}},
    {ESH_ProcTftpget, kUserView, {kTftp, kTftpServer, kGet, kRemote, kTarget}},
    {ESH_ProcTftpput, kUserView, {kTftp, kTftpServer, kPut, kSource, kRemote}},
    {ESH_ProcTftpIPv6get, kUserView, {kTftp, kIPv6, kTftpServer6, kGet, kRemote, kTarget}},
    {ESH_ProcTftpIPv6put, kUserView, {kTftp, kIPv6, kTftpServer6, kPut, kSource, kRemote}},
    {ESH_ProcPing, kAllViews, {kPing, kPeer}},
    {ESH_ProcPing_c, kAllViews, {kPing, kCountOption, kCount, kPeer}},
    {ESH_ProcPing_s, kAllViews, {kPing, kSizeOption, kSize, kPeer}},
    {ESH_ProcPing_cs, kAllViews, {kPing, kCountOption, kCount, kSizeOption, kSize, kPeer}},
    {ESH_ProcPing_sc, kAllViews, {kPing, kSizeOption, kSize, kCountOption, kCount, kPeer}},
    {ESH_ProcPingIPv6, kAllViews, {kPing, kIPv6, kPeer6}},
    {ESH_ProcPingIPv6_c, kAllViews, {kPing, kIPv6, kCountOption, kCount6, kPeer6}},
    {ESH_ProcPingIPv6_s, kAllViews, {kPing, kIPv6, kSizeOption, kSize6, kPeer6}},
    {ESH_ProcPingIPv6_cs, kAllViews, {kPing, kIPv6, kCountOption, kCount6, kSizeOption, kSize6, kPeer6}},
    {ESH_ProcPingIPv6_sc, kAllViews, {kPing, kIPv6, kSizeOption, kSize6, kCountOption, kCount6, kPeer6}},
};
static_assert(WellFormed(kRemoteCommands));

}  // namespace

void ESH_Protocol_Init() { RegisterCommands(kRemoteCommands); }
