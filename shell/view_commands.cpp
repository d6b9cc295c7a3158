#include "shell/view_commands.h"

#include <cstdio>
#include <cstring>

#include "net/ip_stack.h"
#include "shell/command/command_table.h"
#include "shell/command/command_tree.h"
#include "shell/command/view.h"
#include "util/result.h"

namespace {

constexpr char kSystemViewEntered[] = "System View: return to User View with Ctrl+Z\r";

constexpr CommandWord kQuit = Word("quit", "Return to a lower-level view");

constexpr CommandRow kSystemViewCommand[] = {
    {ESH_ProcSysView, kUserView, {Word("system-view", "Enter system view")}},
};
static_assert(WellFormed(kSystemViewCommand));

constexpr CommandRow kWithIpStack[] = {
    {ESH_ProcMthView,
     kSystemView,
     {Word("interface", "Interface configuration"), Word("m-eth0", "Management ethernet interface")}},
    {ESH_ProcQuit, kSystemView | kInterfaceView, {kQuit}},
};
static_assert(WellFormed(kWithIpStack));

constexpr CommandRow kWithoutIpStack[] = {
    {ESH_ProcQuit, kSystemView, {kQuit}},
};
static_assert(WellFormed(kWithoutIpStack));

bool IsCurrentView(const char* prompt) { return std::strcmp(g_pstEshCurrentView->pcPrompt, prompt) == 0; }

}  // namespace

void ESH_ChangeView_Init() {
  RegisterCommands(kSystemViewCommand);
  if (ESH_IsExistIpstackKo() == 1)
    RegisterCommands(kWithIpStack);
  else
    RegisterCommands(kWithoutIpStack);
}

std::uint32_t ESH_ProcSysView() {
  ESH_SetCmdMode(g_pstEshSysView);
  std::puts(kSystemViewEntered);
  return kSuccess;
}

std::uint32_t ESH_ProcMthView() {
  ESH_SetCmdMode(g_pstEshMthView);
  return kSuccess;
}

std::uint32_t ESH_ProcQuit() {
  if (IsCurrentView(kInterfacePrompt))
    ESH_SetCmdMode(g_pstEshSysView);
  else if (IsCurrentView(kSystemPrompt))
    ESH_SetCmdMode(g_pstEshUserView);
  return kSuccess;
}
