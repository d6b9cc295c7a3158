#include "shell/parser.h"

#include <cstring>

#include "shell/command/command_tree.h"
#include "shell/command/view.h"
#include "shell/command/words.h"
#include "shell/execute.h"
#include "term/help/completion.h"
#include "term/help/help.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "term/terminal.h"

namespace {

/// What was typed behind a "?" plays no part.
void CutBehindQuestionMark(char* line) {
  char* question_mark = std::strchr(line, '?');
  if (question_mark != nullptr) question_mark[1] = '\0';
}

void Execute(const VEC_S& words, char* line) {
  ESH_ResetTabState();
  ESH_CmdExecute(&words);
  line[0] = '\0';
}

void CompleteLine(VEC_S& words, char* line, std::size_t last) {
  line[last] = '\0';
  ESH_TabComplete(&words, line);
  ESH_LINE_SetCmdString();
}

void Help(const VEC_S& words, char* line, std::size_t last) {
  ESH_ResetTabState();
  const bool at_new_word = last == 0 || line[last - 1] == ' ';
  line[last] = '\0';
  ESH_Help(&words, at_new_word ? 1 : 0);
  ESH_LINE_SetCmdString();
}

}  // namespace

void ESH_CmdParser(char* line) {
  EndTypedLine();
  CutBehindQuestionMark(line);
  if (IsBlankLine(line)) return;
  const std::size_t last = std::strlen(line) - 1;
  if (line[last] == kKeyCtrlZ) {
    ESH_SetCmdMode(g_pstEshUserView);
    return;
  }
  const UniqueWords words = SplitLine(line);
  if (words == nullptr) return;
  CutEndKey(*words);
  switch (line[last]) {
    case '\r':
    case '\n':
      Execute(*words, line);
      break;
    case '\t':
      CompleteLine(*words, line, last);
      break;
    default:
      Help(*words, line, last);
      break;
  }
}
