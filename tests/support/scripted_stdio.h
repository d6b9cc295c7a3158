#pragma once

#include <string>
#include <string_view>

#include "util/unique_handle.h"

/// Standard input and output of this process for a while: the given keys can be read at once and are followed by
/// the end of the input; what is written is kept. Neither is a terminal.
class ScriptedStdio {
 public:
  /// Puts the two in place.
  explicit ScriptedStdio(std::string_view keys = {});
  /// Gives the process its own back.
  ~ScriptedStdio();
  ScriptedStdio(const ScriptedStdio&) = delete;
  ScriptedStdio& operator=(const ScriptedStdio&) = delete;

  /// What was written since the last call.
  [[nodiscard]] std::string TakeOutput();

 private:
  UniqueFd saved_input_;
};
