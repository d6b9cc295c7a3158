#include "net/address_rules.h"
#include "remote/host_address.h"
#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"

namespace {

std::uint32_t Ping(const Refusal& refusal, const ToolLine& line) { return refusal ? *refusal : RunStoppableTool(line); }

std::uint32_t PingIPv4(const ToolLine& line) { return Ping(CheckIPv4Host(), line); }

std::uint32_t PingIPv6(const ToolLine& line) { return Ping(CheckIPv6Host(kInvalidIPv6Address), line); }

}  // namespace

std::uint32_t ESH_ProcPing() {
  ToolLine line;
  line.Append("/bin/ping -4 -c 5 %s", g_szIPv4Address);
  return PingIPv4(line);
}

std::uint32_t ESH_ProcPing_c() {
  ToolLine line;
  line.Append("/bin/ping -4 -c %s %s", g_szCount, g_szIPv4Address);
  return PingIPv4(line);
}

std::uint32_t ESH_ProcPing_s() {
  ToolLine line;
  line.Append("/bin/ping -4 -c 5  -s %s %s", g_szSize,
              g_szIPv4Address);  // two blanks, deliberately: the tool sees none of them
  return PingIPv4(line);
}

std::uint32_t ESH_ProcPing_cs() {
  ToolLine line;
  line.Append("/bin/ping -4 -c %s -s %s %s", g_szCount, g_szSize, g_szIPv4Address);
  return PingIPv4(line);
}

std::uint32_t ESH_ProcPing_sc() {
  ToolLine line;
  line.Append("/bin/ping -4 -s %s -c %s %s", g_szSize, g_szCount, g_szIPv4Address);
  return PingIPv4(line);
}

std::uint32_t ESH_ProcPingIPv6() {
  ToolLine line;
  line.Append("/bin/ping -6 -c 5 %s", g_szIPv6Address);
  return PingIPv6(line);
}

std::uint32_t ESH_ProcPingIPv6_c() {
  ToolLine line;
  line.Append("/bin/ping -6 -c %s %s", g_szCount, g_szIPv6Address);
  return PingIPv6(line);
}

std::uint32_t ESH_ProcPingIPv6_s() {
  ToolLine line;
  line.Append("/bin/ping -6 -c 5 -s %s %s", g_szSize, g_szIPv6Address);
  return PingIPv6(line);
}

std::uint32_t ESH_ProcPingIPv6_cs() {
  ToolLine line;
  line.Append("/bin/ping -6 -c %s -s %s %s", g_szCount, g_szSize, g_szIPv6Address);
  return PingIPv6(line);
}

std::uint32_t ESH_ProcPingIPv6_sc() {
  ToolLine line;
  line.Append("/bin/ping -6 -s %s -c %s %s", g_szSize, g_szCount, g_szIPv6Address);
  return PingIPv6(line);
}
