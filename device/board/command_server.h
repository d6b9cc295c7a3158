#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "device/board/channel.h"

namespace device {

/// Serves the launcher in the first process of a PID namespace: collects processes, and runs commands.
class CommandServer {
 public:
  /// What there is to do besides: with a process that ended and is no command, with another message.
  struct Others {
    std::function<void(pid_t process, int wait_status)> ended;
    std::function<void(Message& message)> message;
  };

  /// @param channel      to the launcher; outlives this object. The process ends with it.
  /// @param environment  "NAME=value" for every command; none: this process's own.
  CommandServer(Channel& channel, std::vector<std::string> environment, Others others);

  /// Waits until something happens, and does what is due.
  /// @param also  descriptor to watch as well, -1 for none.
  /// @return whether that can be read.
  bool ServeOnce(int also = -1);

 private:
  void CollectProcesses();
  void Start(const Message& message);

  Channel& channel_;
  UniqueFd signals_;
  std::vector<std::string> environment_;
  Others others_;
  std::map<pid_t, std::uint32_t> running_;  ///< request number by process
};

}  // namespace device
