#include "bench/own_shell.h"

#include <cstdlib>

#include "bench/measure.h"
#include "shell/command/view.h"
#include "shell/parser.h"
#include "shell/startup.h"
#include "term/help/completion.h"
#include "term/history.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/support/private_root.h"
#include "util/fixed_text.h"

void StartOwnShell() {
  const std::string failure = EnterPrivateRoot();
  Require(failure.empty(), failure.c_str());
  AddMedium("flash:");
  WriteFile("/lib/modules/ipstack.ko", "");
  setenv("TERM", "xterm", 1);
  setenv("TZ", "UTC0", 1);
  bool ready = ESH_HIS_Init() == 0 && ESH_LINE_Init() == 0;
  ESH_View_Init();
  ready = ready && ESH_FsPwd_Init() == 0;
  ESH_CMD_Init();
  ESH_ResetTabState();
  g_stESh_Display.ulScrLines = 0;
  Require(ready, "the shell does not start");
}

void RunLine(const char* line) {
  CopyBounded(g_stESh_Line.pcBuf, kLineRoom, line);
  ESH_CmdParser(g_stESh_Line.pcBuf);
}
