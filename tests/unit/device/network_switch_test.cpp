#include "device/arm64/network_switch.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <string>

#include "util/unique_handle.h"

namespace {

/// A place of the switch: what is sent at `far` is heard by the switch at `near`.
struct Place {
  Place() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()), 0);
    near.Reset(ends[0]);
    far.Reset(ends[1]);
  }
  /// @return 'x' for a frame that came, '-' for none.
  [[nodiscard]] char Heard() const {
    std::array<char, 64> room{};
    return recv(far.Get(), room.data(), room.size(), 0) > 0 ? 'x' : '-';
  }

  UniqueFd near;
  UniqueFd far;
};

struct FrameCase {
  char from;  // m(achine), e(mulator), l(ab)
  const char* destination;
  const char* heard;  // by machine, emulator and lab
  const char* why;
};

constexpr FrameCase kFrames[] = {
    {'m', "\x52\x55\x0a\x00\x02\x02", "-x-", "the emulator's own machine"},
    {'m', "\x02\x5a\xc1\x00\x00\x01", "--x", "a machine of the lab: the emulator would answer for it"},
    {'m', "\xff\xff\xff\xff\xff\xff", "-xx", "everybody"},
    {'m', "\x33\x33\x00\x00\x00\x01", "-xx", "a group"},
    {'m', "\x02", "---", "too short to have an address"},
    {'e', "\x02\x5a\xc1\x07\xf2\x0e", "x--", "the emulator talks to its machine alone"},
    {'l', "\xff\xff\xff\xff\xff\xff", "x--", "the lab must not hear of the emulator's network"},
};

TEST(NetworkSwitch, GivesAFrameToThoseItIsFor) {
  for (const FrameCase& c : kFrames) {
    const Place machine;
    const Place emulator;
    const Place lab;
    const Place& from = c.from == 'm' ? machine : c.from == 'e' ? emulator : lab;
    std::string frame(c.destination, c.destination[1] == '\0' ? 1 : 6);
    if (frame.size() > 1) frame += "sender and payload";
    ASSERT_GT(send(from.far.Get(), frame.data(), frame.size(), 0), 0);
    device::NetworkSwitch(machine.near.Get(), emulator.near.Get(), lab.near.Get()).Pass();
    EXPECT_EQ((std::string{machine.Heard(), emulator.Heard(), lab.Heard()}), c.heard) << c.why;
  }
}

TEST(NetworkSwitch, WorksWithoutALab) {
  const Place machine;
  const Place emulator;
  ASSERT_GT(send(machine.far.Get(), "\xff\xff\xff\xff\xff\xff everybody", 16, 0), 0);
  device::NetworkSwitch(machine.near.Get(), emulator.near.Get(), -1).Pass();
  EXPECT_EQ(emulator.Heard(), 'x');
}

}  // namespace
