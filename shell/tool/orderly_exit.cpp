#include "shell/tool/orderly_exit.h"

#include "shell/tool/child_process.h"
#include "term/line_editor.h"

void ESH_Exit() {
  ESH_CloseSubProcess();
  ESH_LINE_Exit();
}
