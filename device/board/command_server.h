#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "device/board/channel.h"

namespace device {

/// Runs commands for the other end of a channel and answers with how they ended.
class CommandServer {
 public:
  /// @param channel      outlives the server.
  /// @param environment  "NAME=value" for every command.
  CommandServer(Channel& channel, std::vector<std::string> environment);

  /// Starts or kills a command; other messages are left alone.
  void Handle(const Message& message);

  /// Answers for a child that was reaped. A child that is no command is left alone.
  void ChildEnded(pid_t child, int wait_status);

 private:
  void Start(const Message& message);

  Channel& channel_;
  std::vector<std::string> environment_;
  std::map<pid_t, std::uint32_t> running_;  // request number by process
};

/// Replaces this process, a fresh child, by a program. Returns only by ending the process.
/// @param descriptors  become 0, 1 and 2; all others are closed.
[[noreturn]] void ExecuteProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment,
                                 const std::array<int, 3>& descriptors);

}  // namespace device
