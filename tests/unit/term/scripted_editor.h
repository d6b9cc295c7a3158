#pragma once

#include <string>
#include <string_view>

#include "tests/support/scripted_stdio.h"

/// The line editor on a terminal, in this process, with an empty history and with keys that are all typed already.
class ScriptedEditor {
 public:
  /// @param width of the terminal in columns; 0: as the terminal's description has it.
  explicit ScriptedEditor(std::string_view keys = {}, const char* term = "xterm", unsigned width = 80);
  /// Frees the editor and the terminal's description.
  ~ScriptedEditor();
  ScriptedEditor(const ScriptedEditor&) = delete;
  ScriptedEditor& operator=(const ScriptedEditor&) = delete;

  /// What was written since the last call.
  [[nodiscard]] std::string TakeOutput() { return stdio_.TakeOutput(); }
  /// The keys that nobody has read.
  [[nodiscard]] std::string TakeKeysLeft() { return stdio_.TakeKeysLeft(); }

 private:
  ScriptedStdio stdio_;
};
