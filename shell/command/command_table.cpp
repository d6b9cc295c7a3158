#include "shell/command/command_table.h"

namespace {

void RegisterInViews(unsigned views, ESH_CMD_THREAD_S* thread) {
  if (views == kAllViews) {
    ESH_CmdThread_Reg2AllView(thread);
    return;
  }
  if ((views & kUserView) != 0) ESH_CmdThread_Reg2View(g_pstEshUserView, thread);
  if ((views & kSystemView) != 0) ESH_CmdThread_Reg2View(g_pstEshSysView, thread);
  if ((views & kInterfaceView) != 0) ESH_CmdThread_Reg2View(g_pstEshMthView, thread);
}

}  // namespace

void RegisterCommands(std::span<const CommandRow> rows) {
  for (const CommandRow& row : rows) {
    ESH_CMD_THREAD_S* thread = ESH_CmdThread_Init(row.handler);
    if (thread == nullptr) continue;
    for (const CommandWord* word = row.words; word->text != nullptr; ++word) {
      ESH_CmdThread_AddCmdElement(thread, word->text, word->help, word->list_values, word->check, word->record,
                                  word->type);
    }
    ESH_CmdThread_AddCr(thread);
    RegisterInViews(row.views, thread);
  }
}
