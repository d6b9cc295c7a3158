#pragma once

#include <initializer_list>
#include <string>

#include "shell/command/command_tree.h"

/// A view with commands of the test's own; it is the current one while it lives.
class TestView {
 public:
  /// @param commands as for Add.
  explicit TestView(const char* prompt, std::initializer_list<const char*> commands = {});
  /// Makes the view before current.
  ~TestView();
  TestView(const TestView&) = delete;
  TestView& operator=(const TestView&) = delete;

  /// Adds a command whose handler notes that it ran.
  /// @param words such as "ping X.X.X.X <cr>": what is no placeholder and no "<cr>" is a keyword.
  /// @param help, check what the parameters call.
  void Add(const std::string& words, ESH_CMD_HELP_F help = nullptr, ESH_CMD_CHECK_F check = nullptr);

  /// The commands that ran since the last call, one a line.
  [[nodiscard]] static std::string TakeRan();

 private:
  ESH_VIEW_S* before_;
};
