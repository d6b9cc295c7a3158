#pragma once

#include <filesystem>
#include <string>

#include "tests/device/operator_console.h"

/// An operator whose device is connected with real servers, which serve a directory of the test's own.
class LabConsole : public OperatorConsole {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Boots with the servers, and gives m-eth0 its addresses and gateways.
  void BootIntoLab();

  /// Types a line and all answers. @return all that was printed behind the line.
  std::string Ask(const std::string& line, const std::string& answers);
  /// The console's modes; the same whenever the prompt is there.
  std::string Modes() { return Run("stty -a < " + ConsolePath()); }

  /// Sends a signal to the processes of a server that serve somebody.
  void SignalSessions(const std::string& server, const std::string& signal);
  /// Sends a signal to a server and all that it started.
  void SignalServer(const std::string& server, const std::string& signal);

  /// What the servers give out and receive.
  [[nodiscard]] std::string Served(const std::string& name) const { return (directory_ / name).string(); }
  /// The modes at the first prompt.
  [[nodiscard]] const std::string& PromptModes() const { return modes_; }

 private:
  void RunInLab(const std::string& command);

  std::filesystem::path directory_;
  std::string modes_;
};
