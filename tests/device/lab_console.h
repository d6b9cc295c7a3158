#pragma once

#include <string>

#include "tests/device/operator_console.h"

/// An operator whose device is connected with real servers.
class LabConsole : public OperatorConsole {
 protected:
  /// Uses the suite's device with the servers, and gives m-eth0 its addresses and gateways.
  void UseLab();

  /// Sends a signal to the processes of a server that serve somebody.
  void SignalSessions(const std::string& server, const std::string& signal);

  /// The modes at the first prompt.
  [[nodiscard]] const std::string& PromptModes() const { return modes_; }

 private:
  std::string modes_;
};
