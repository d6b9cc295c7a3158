#include "shell/startup.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "fs/file_commands.h"
#include "fs/medium.h"
#include "fs/working_directory.h"
#include "net/ip_stack.h"
#include "net/network_commands.h"
#include "net/port_tools.h"
#include "pkg/install/package_commands.h"
#include "remote/remote_commands.h"
#include "shell/command/command_tree.h"
#include "shell/command/view.h"
#include "shell/console_attach.h"
#include "shell/hand_over.h"
#include "shell/parser.h"
#include "shell/reboot.h"
#include "shell/tool/child_process.h"
#include "shell/tool/tool_line.h"
#include "shell/view_commands.h"
#include "term/help/completion.h"
#include "term/history.h"
#include "term/line_editor.h"
#include "util/result.h"
#include "util/signals_held.h"
#include "util/unique_handle.h"

std::uint8_t g_bIsLoadFromScmd = 0;

namespace {

constexpr char kLoadedModules[] = "/proc/modules";
constexpr char kAddonEntry[] = "addon ";  // with its blank: a name that only begins like it does not count

constexpr char kMountScript[] = "/etc/pkg/esh/mount.sh";
constexpr char kLoadAddon[] = "/bin/insmod /lib/modules/addon.ko";
constexpr char kLoadIpStack[] = "/bin/insmod /lib/modules/ipstack.ko";
constexpr char kLoopbackUp[] = "/bin/ifconfig lo up";

/// @return the verdict on the steps that count.
std::uint32_t LoadModules() {
  if (HasLoadedKo() == 0) (void)RunTool(kLoadAddon);  // the shell can do without what the add-on tells
  return ESH_IsExistIpstackKo() == 1 ? RunTool(kLoadIpStack) : kSuccess;
}

/// @return the verdict on both interfaces.
std::uint32_t BringInterfacesUp() {
  if (ESH_IsExistIpstackKo() == 0) return kSuccess;
  std::uint32_t verdict = RunTool(kLoopbackUp);
  verdict += BringPortUp();
  return verdict;
}

void SetSignals() {
  std::signal(SIGINT, ESH_SigInt);
  for (const int signal : {SIGHUP, SIGPIPE, SIGTTOU}) std::signal(signal, SIG_IGN);
}

/// Only a shell with a controlling terminal can: a tool that cannot take the foreground ends before it is started.
bool CanStartTools() { return SetPgtp(getpgrp()) == kSuccess; }

/// The device cannot be used like this.
[[noreturn]] void RebootAfterFailure() {
  if (!CanStartTools()) BecomeReboot();
  ESH_Reboot();
  std::exit(EXIT_SUCCESS);
}

}  // namespace

void RunShell() {
  std::signal(SIGINT, SIG_IGN);  // until it has a handler: a Ctrl+C between two tools of start-up must not end it
  UnblockSignals();
  umask(0);
  std::uint32_t verdict = AttachConsole();
  verdict += ESH_HIS_Init();
  verdict += ESH_LINE_Init();
  (void)RunTool(kMountScript);  // a device without media still has a shell
  verdict += LoadModules();
  if (g_bIsLoadFromScmd == 1) LinkMedia();
  verdict += BringInterfacesUp();
  ESH_View_Init();
  (void)ESH_FsPwd_Init();  // without a medium the working directory stays where it is
  ESH_CMD_Init();
  SetSignals();
  ESH_ResetTabState();
  if (verdict != kSuccess || g_pstEshCurrentView == nullptr) RebootAfterFailure();
  SetTtySwich(1);
  for (;;) ESH_CmdParser(ESH_LINE_GetCmdLine());
}

std::uint16_t HasLoadedKo() {
  const UniqueFile modules(std::fopen(kLoadedModules, "re"));
  if (modules == nullptr) return 0;
  char line[BUFSIZ];
  while (std::fgets(line, sizeof(line), modules.get()) != nullptr)
    if (std::strstr(line, kAddonEntry) != nullptr) return 1;
  return 0;
}

void ESH_SigInt(int /*signo*/) { ESH_Sig2SubProcess(SIGINT); }

void ESH_CMD_Init() {
  ESH_Fs_Init();
  ESH_Pkgm_Init();
  if (ESH_IsExistIpstackKo() == 1) {
    ESH_Network_Init();
    ESH_Protocol_Init();
  }
  ESH_Reboot_Init();
  ESH_ChangeView_Init();
}

std::uint32_t ESH_FsPwd_Init() { return ESH_SetPwd(); }
