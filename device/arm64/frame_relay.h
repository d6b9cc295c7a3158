#pragma once

#include <poll.h>

#include <vector>

namespace device {

/// Passes Ethernet frames between a machine's port and the lab. Both are sockets that carry one frame at a time; they
/// belong to the caller. -1 is a place with nothing there.
class FrameRelay {
 public:
  FrameRelay(int machine, int lab) : machine_(machine), lab_(lab) {}

  /// Adds what the relay waits for.
  void Watch(std::vector<pollfd>& waiting) const;
  /// Passes on the frames that came.
  void Pass() const;

 private:
  int machine_;
  int lab_;
};

}  // namespace device
