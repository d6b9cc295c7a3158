#include "device/arm64/network_switch.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>

namespace device {
namespace {

constexpr std::size_t kMaxFrame = 65536;
constexpr int kMaxFramesAtOnce = 64;  // others wait too
/// How the addresses of the emulator's own machines begin.
constexpr std::array<unsigned char, 2> kEmulatorAddress{0x52, 0x55};

using Frame = std::span<const unsigned char>;

bool IsForEverybody(Frame frame) { return (frame[0] & 1U) != 0; }
bool IsForEmulator(Frame frame) { return std::equal(kEmulatorAddress.begin(), kEmulatorAddress.end(), frame.begin()); }

/// A frame that does not fit any more is lost, as on a wire.
void Send(int socket, Frame frame) {
  if (socket >= 0) (void)send(socket, frame.data(), frame.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
}

template <typename Deliver>
void ForEachFrame(int socket, Deliver deliver) {
  std::array<unsigned char, kMaxFrame> room{};
  for (int i = 0; socket >= 0 && i < kMaxFramesAtOnce; ++i) {
    const ssize_t length = recv(socket, room.data(), room.size(), MSG_DONTWAIT);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return;
    if (static_cast<std::size_t>(length) > kEmulatorAddress.size())
      deliver(Frame(room).first(static_cast<std::size_t>(length)));
  }
}

}  // namespace

void NetworkSwitch::Watch(std::vector<pollfd>& waiting) const {
  for (const int socket : {machine_, emulator_, lab_}) waiting.push_back({socket, POLLIN, 0});
}

void NetworkSwitch::Pass() const {
  // The emulator answers for any address that it sees, so it gets only what is for it.
  ForEachFrame(machine_, [this](Frame frame) {
    if (IsForEverybody(frame) || IsForEmulator(frame)) Send(emulator_, frame);
    if (!IsForEmulator(frame)) Send(lab_, frame);
  });
  ForEachFrame(emulator_, [this](Frame frame) { Send(machine_, frame); });
  ForEachFrame(lab_, [this](Frame frame) { Send(machine_, frame); });
}

}  // namespace device
