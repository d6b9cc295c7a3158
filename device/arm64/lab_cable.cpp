#include "device/arm64/lab_cable.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/ethtool.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace device {
namespace {

// Both are made by device/lab/connect.sh.
constexpr std::string_view kCableEnd = "port0";
constexpr std::string_view kLabEnd = "lab0";

ifreq RequestFor(std::string_view name) {
  ifreq request{};
  name.copy(request.ifr_name, sizeof(request.ifr_name) - 1);
  return request;
}

std::string Problem(const char* what) {
  return std::string("cannot plug in the lab's cable: ") + what + ": " + std::strerror(errno);
}

/// The kernel leaves checksums out of what it sends to another interface of the same machine, and sends pieces larger
/// than a frame. An emulated machine must get what would go over a wire.
bool SendLikeAWire(int socket) {
  ethtool_value off{ETHTOOL_STXCSUM, 0};
  ifreq request = RequestFor(kLabEnd);
  request.ifr_data = reinterpret_cast<char*>(&off);
  return ioctl(socket, SIOCETHTOOL, &request) == 0;
}

/// The kernel's own network must not answer for the machine: the end gets another address, so that what is meant for
/// the machine is not for it, and no IPv6.
bool SilenceKernel(int socket, ifreq request) {
  const UniqueFd setting(open("/proc/sys/net/ipv6/conf/port0/disable_ipv6", O_WRONLY | O_CLOEXEC));
  if (setting) (void)!write(setting.Get(), "1", 1);  // a kernel without IPv6 is silent anyway
  request.ifr_hwaddr.sa_data[5] = static_cast<char>(request.ifr_hwaddr.sa_data[5] ^ 1);
  if (ioctl(socket, SIOCSIFHWADDR, &request) != 0) return false;
  request.ifr_flags = IFF_UP | IFF_NOARP;
  return ioctl(socket, SIOCSIFFLAGS, &request) == 0;
}

/// @return a socket that tells of changes to network ports.
UniqueFd ListenToPorts() {
  UniqueFd changes(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
  sockaddr_nl group{};
  group.nl_family = AF_NETLINK;
  group.nl_groups = RTMGRP_LINK;
  if (bind(changes.Get(), reinterpret_cast<const sockaddr*>(&group), sizeof(group)) != 0) changes.Reset();
  return changes;
}

}  // namespace

std::string LabCable::Open() {
  UniqueFd socket(::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return Problem("no packet socket");
  ifreq request = RequestFor(kCableEnd);
  if (ioctl(socket.Get(), SIOCGIFINDEX, &request) != 0) return "";
  sockaddr_ll place{};
  place.sll_family = AF_PACKET;
  place.sll_protocol = htons(ETH_P_ALL);
  place.sll_ifindex = request.ifr_ifindex;

  if (ioctl(socket.Get(), SIOCGIFHWADDR, &request) != 0) return Problem("no address");
  std::copy_n(request.ifr_hwaddr.sa_data, port_address_.size(), port_address_.begin());
  if (!SendLikeAWire(socket.Get())) return Problem("checksums");
  if (!SilenceKernel(socket.Get(), request)) return Problem("its end");
  const int ignore = 1;
  if (setsockopt(socket.Get(), SOL_PACKET, PACKET_IGNORE_OUTGOING, &ignore, sizeof(ignore)) != 0 ||
      bind(socket.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof(place)) != 0)
    return Problem("packets");
  changes_ = ListenToPorts();
  if (!changes_) return Problem("changes");
  socket_ = std::move(socket);
  return "";
}

bool LabCable::IsPluggedIn() const {
  std::array<char, 4096> change{};
  while (recv(changes_.Get(), change.data(), change.size(), 0) > 0) {
    // They only wake; the port tells.
  }
  ifreq request = RequestFor(kCableEnd);
  return ioctl(socket_.Get(), SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_RUNNING) != 0;
}

}  // namespace device
