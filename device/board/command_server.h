#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "device/board/channel.h"

namespace device {

/// Runs commands that are asked for by messages, and tells how they ended.
class CommandServer {
 public:
  /// Takes the number of a request and the exit status of its command.
  using Answer = std::function<void(std::uint32_t id, int status)>;

  /// @param environment  "NAME=value" for every command.
  CommandServer(Answer answer, std::vector<std::string> environment);

  /// Starts or kills a command; other messages are left alone.
  void Handle(const Message& message);

  /// Answers for a child that was reaped. A child that is no command is left alone.
  void ChildEnded(pid_t child, int wait_status);

 private:
  void Start(const Message& message);

  Answer answer_;
  std::vector<std::string> environment_;
  std::map<pid_t, std::uint32_t> running_;  ///< request number by process
};

/// @return the exit status that a shell would tell: 128 + number when a signal ended the process.
int ExitStatusOf(int wait_status);

/// Replaces this process, a fresh child, by a program. Returns only by ending the process.
/// @param descriptors  become 0, 1, 2 and so on; all others are closed.
[[noreturn]] void ExecuteProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment,
                                 const std::vector<int>& descriptors);

}  // namespace device
