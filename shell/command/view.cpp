#include "shell/command/view.h"

#include "shell/command/command_tree.h"
#include "term/line_editor.h"

void ESH_View_Init() {
  g_pstEshUserView = ViewInfoAlloc(kUserPrompt);
  g_pstEshSysView = ViewInfoAlloc(kSystemPrompt);
  g_pstEshMthView = ViewInfoAlloc(kInterfacePrompt);
  ESH_SetCmdMode(g_pstEshUserView);
}

void ESH_SetCmdMode(ESH_VIEW_S* view) {
  if (view == nullptr) return;  // there was no memory for it
  g_pstEshCurrentView = view;
  ESH_SetPrompt(view->pcPrompt);
}
