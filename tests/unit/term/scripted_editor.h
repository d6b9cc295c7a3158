#pragma once

#include <string_view>

#include "tests/support/scripted_stdio.h"

/// The line editor on a terminal, in this process, with an empty history and with keys that are all typed already.
class ScriptedEditor : public ScriptedStdio {
 public:
  /// @param width of the terminal in columns; 0: as the terminal's description has it.
  explicit ScriptedEditor(std::string_view keys = {}, const char* term = "xterm", unsigned width = 80);
  /// Frees the editor and the terminal's description.
  ~ScriptedEditor();
};
