#pragma once

#include <string>
#include <string_view>

#include "tests/support/scripted_stdio.h"

/// The line editor on an xterm of 80 columns, in this process, with keys that are all typed already.
class ScriptedEditor {
 public:
  explicit ScriptedEditor(std::string_view keys = {});
  ~ScriptedEditor();
  ScriptedEditor(const ScriptedEditor&) = delete;
  ScriptedEditor& operator=(const ScriptedEditor&) = delete;

  [[nodiscard]] std::string TakeOutput() { return stdio_.TakeOutput(); }
  [[nodiscard]] std::string TakeKeysLeft() { return stdio_.TakeKeysLeft(); }

 private:
  ScriptedStdio stdio_;
};

/// Frees the terminal description that the terminfo library holds.
void ForgetTerminal();
