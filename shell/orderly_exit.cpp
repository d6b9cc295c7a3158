#include "shell/orderly_exit.h"

#include "shell/child_process.h"
#include "term/line_editor.h"

void ESH_Exit() {
  ESH_CloseSubProcess();
  ESH_LINE_Exit();
}
