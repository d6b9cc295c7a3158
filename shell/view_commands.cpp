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

constexpr CommandRow kWithIpStack[] = {
    {ESH_ProcMthView,
     kSystemView,
     {Word("interface", "Interface configuration"), Word("m-eth0", "Management ethernet interface")}},
};
static_assert(WellFormed(kWithIpStack));

/// On a device without an IP stack nobody gets into the interface view.
constexpr CommandRow kViewCommands[] = {
    {ESH_ProcSysView, kUserView, {Word("system-view", "Enter system view")}},
    {ESH_ProcQuit, kSystemView | kInterfaceView, {Word("quit", "Return to a lower-level view")}},
};
static_assert(WellFormed(kViewCommands));

bool IsCurrentView(const char* prompt) { return std::strcmp(g_pstEshCurrentView->pcPrompt, prompt) == 0; }

}  // namespace

void ESH_ChangeView_Init() {
  if (ESH_IsExistIpstackKo() == 1) RegisterCommands(kWithIpStack);
  RegisterCommands(kViewCommands);
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
