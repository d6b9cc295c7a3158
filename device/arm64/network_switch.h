#pragma once

#include <poll.h>

#include <vector>

namespace device {

/// Passes Ethernet frames between a machine's port, the emulator's own small network (its TFTP server) and the lab.
/// The three are sockets that carry one frame at a time; they belong to the caller. -1 is a place with nothing there.
class NetworkSwitch {
 public:
  NetworkSwitch(int machine, int emulator, int lab) : machine_(machine), emulator_(emulator), lab_(lab) {}

  /// Adds what the switch waits for.
  void Watch(std::vector<pollfd>& waiting) const;
  /// Passes on the frames that came.
  void Pass() const;

 private:
  int machine_;
  int emulator_;
  int lab_;
};

}  // namespace device
