#include "net/port_tools.h"

#include "net/management_port.h"
#include "shell/tool/script_file.h"
#include "shell/tool/tool_line.h"
#include "util/result.h"

namespace {

constexpr char kRemoveIPv4Address[] = "/bin/ifconfig m-eth0 0.0.0.0";
constexpr char kRemoveIPv4DefaultRoute[] = "/bin/route del default";
constexpr char kRemoveIPv6DefaultRoute[] = "/bin/route -A inet6 del ::/0";
constexpr char kPortUp[] = "/bin/ifconfig m-eth0 up";
constexpr char kPortDown[] = "/bin/ifconfig m-eth0 down";
constexpr char kScript[] = "/var/tmp/TempFile";

}  // namespace

std::uint32_t ApplyIPv4Address(const char* address, const char* mask) {
  ToolLine line;
  line.Append("/bin/ifconfig m-eth0 %s netmask %s", address, mask);
  return RunTool(line);
}

std::uint32_t RemoveIPv4Address() { return RunTool(kRemoveIPv4Address); }

std::uint32_t ApplyIPv6Address(const char* address, const char* prefix_length) {
  ToolLine line;
  line.Append("/bin/ifconfig m-eth0 %s/%s", address, prefix_length);
  return RunTool(line);
}

std::uint32_t RemoveIPv6Address(const char* address, const char* prefix_length) {
  ToolLine line;
  line.Append("/bin/ifconfig m-eth0 del %s/%s", address, prefix_length);
  return RunTool(line);
}

std::uint32_t AddIPv4DefaultRoute(const char* gateway) {
  ToolLine line;
  line.Append("/bin/route add default gw %s", gateway);
  return RunTool(line);
}

std::uint32_t RemoveIPv4DefaultRoute() { return RunTool(kRemoveIPv4DefaultRoute); }

std::uint32_t AddIPv6DefaultRoute(const char* gateway) {
  ToolLine line;
  line.Append("/bin/route -A inet6 add ::/0 gw %s dev %s", gateway, kPortName);
  return RunTool(line);
}

std::uint32_t RemoveIPv6DefaultRoute() { return RunTool(kRemoveIPv6DefaultRoute); }

std::uint32_t BringPortUp() { return RunTool(kPortUp); }

std::uint32_t TakePortDown() {
  const std::uint32_t address_removed = RunTool(kRemoveIPv4Address);
  const std::uint32_t down = RunTool(kPortDown);
  return address_removed == kSuccess && down == kSuccess ? kSuccess : ESH_ERR_FAIL;
}

std::uint32_t ESH_SystemProc(const char* command) { return RunAsScript(kScript, command, RunTool); }
