#include "device/arm64/frame_relay.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>

namespace device {
namespace {

constexpr std::size_t kMaxFrame = 65536;
constexpr int kMaxFramesAtOnce = 64;  // others wait too

/// A frame that does not fit any more is lost, as on a wire.
void PassFrames(int from, int to) {
  std::array<unsigned char, kMaxFrame> room{};
  for (int i = 0; from >= 0 && i < kMaxFramesAtOnce; ++i) {
    const ssize_t length = recv(from, room.data(), room.size(), MSG_DONTWAIT);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return;
    if (to >= 0) (void)send(to, room.data(), static_cast<std::size_t>(length), MSG_DONTWAIT | MSG_NOSIGNAL);
  }
}

}  // namespace

void FrameRelay::Watch(std::vector<pollfd>& waiting) const {
  for (const int socket : {machine_, lab_}) waiting.push_back({socket, POLLIN, 0});
}

void FrameRelay::Pass() const {
  PassFrames(machine_, lab_);
  PassFrames(lab_, machine_);
}

}  // namespace device
