#include "net/network_commands.h"

#include "net/gateway.h"
#include "net/ipv4_address.h"
#include "net/ipv6_address.h"
#include "net/shutdown.h"
#include "shell/command/command_table.h"
#include "shell/command/parameter.h"

namespace {

constexpr CommandWord kUndo = Word("undo", "Cancel current setting");
constexpr CommandWord kIP = Word("ip", "Specify IP configuration");
constexpr CommandWord kIPv6 = Word("ipv6", "Specify IPv6 configuration");
constexpr CommandWord kIPAddress = Word("address", "Assign an IP address to the interface");
constexpr CommandWord kIPv6Address = Word("address", "Assign an IPv6 address to the interface");
constexpr CommandWord kGateway = Word("gateway", "Specify a gateway for the interface");
constexpr CommandWord kShutdown = Word("shutdown", "Shut down the interface");

constexpr CommandWord kAddressParam = Param(ESH_ELEM_IPV4, "X.X.X.X", "IP address", ESH_RecordIPv4);
constexpr CommandWord kMaskParam = Param(ESH_ELEM_IPV4MASK, "X.X.X.X", "IP mask", ESH_RecordIPv4Mask);
constexpr CommandWord kMaskLengthParam =
    Param(ESH_ELEM_INTEGER, "INTEGER<1-31>", "IP mask length", ESH_RecordIPv4MaskLen);
constexpr CommandWord kIPv6Param = Param(ESH_ELEM_IPV6, "X:X::X:X", "IPv6 address", ESH_RecordIPv6);
constexpr CommandWord kPrefixLengthParam =
    Param(ESH_ELEM_INTEGER, "INTEGER<1-127>", "IPv6 prefix length", ESH_RecordIPv6PreLen);

constexpr CommandRow kNetworkCommands[] = {
    {ESH_ProcIPAddrMaskLen, kInterfaceView, {kIP, kIPAddress, kAddressParam, kMaskLengthParam}},
    {ESH_ProcIPAddrMask, kInterfaceView, {kIP, kIPAddress, kAddressParam, kMaskParam}},
    {ESH_ProcUndoIPAddr, kInterfaceView, {kUndo, kIP, kIPAddress}},
    {ESH_ProcIPv6AddrPreLen, kInterfaceView, {kIPv6, kIPv6Address, kIPv6Param, kPrefixLengthParam}},
    {ESH_ProcUndoIPv6Addr, kInterfaceView, {kUndo, kIPv6, kIPv6Address}},
    {ESH_ProcIPGateway, kInterfaceView, {kIP, kGateway, kAddressParam}},
    {ESH_ProcUndoIPGateway, kInterfaceView, {kUndo, kIP, kGateway}},
    {ESH_ProcIPv6Gateway, kInterfaceView, {kIPv6, kGateway, kIPv6Param}},
    {ESH_ProcUndoIPv6Gateway, kInterfaceView, {kUndo, kIPv6, kGateway}},
    {ESH_ProcShutdown, kInterfaceView, {kShutdown}},
    {ESH_ProcUndoShutdown, kInterfaceView, {kUndo, kShutdown}},
    {ESH_ProcDisInterface,
     kAllViews,
     {kDisplay, Word("interface", "Status and configuration information for the interface"),
      Word("m-eth0", "M-eth0 interface")}},
    {ESH_ProcDisIPGateway, kAllViews, {kDisplay, kIP, Word("routing-table", "IP route table")}},
    {ESH_ProcDisIPv6Gateway, kAllViews, {kDisplay, kIPv6, Word("routing-table", "IPv6 route table")}},
};
static_assert(WellFormed(kNetworkCommands));

}  // namespace

void ESH_Network_Init() { RegisterCommands(kNetworkCommands); }
