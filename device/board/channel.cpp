#include "device/board/channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace device {
namespace {

struct MessageHead {
  MessageKind kind;
  std::uint32_t id;
  std::int32_t value;
};

union ControlRoom {
  cmsghdr alignment;
  std::array<char, CMSG_SPACE(sizeof(int) * Channel::kMaxDescriptors)> bytes;
};

std::vector<UniqueFd> TakeDescriptors(msghdr& packet) {
  std::vector<UniqueFd> taken;
  for (cmsghdr* part = CMSG_FIRSTHDR(&packet); part != nullptr; part = CMSG_NXTHDR(&packet, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    std::array<int, Channel::kMaxDescriptors> numbers{};
    const std::size_t count = std::min((part->cmsg_len - CMSG_LEN(0)) / sizeof(int), numbers.size());
    std::memcpy(numbers.data(), CMSG_DATA(part), count * sizeof(int));
    for (std::size_t i = 0; i < count; ++i) taken.emplace_back(numbers[i]);
  }
  return taken;
}

}  // namespace

bool Channel::MakePair(UniqueFd& one, UniqueFd& other) {
  std::array<int, 2> ends{};
  // Packets keep messages apart; the room holds the longest command.
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  one.Reset(ends[0]);
  other.Reset(ends[1]);
  return true;
}

bool Channel::Send(MessageKind kind, std::uint32_t id, std::int32_t value, const std::string& text,
                   std::span<const int> descriptors) {
  if (text.size() > kMaxText || descriptors.size() > kMaxDescriptors) return false;
  MessageHead head{kind, id, value};
  std::array<iovec, 2> parts{{{&head, sizeof(head)}, {const_cast<char*>(text.data()), text.size()}}};
  ControlRoom control{};
  msghdr packet{};
  packet.msg_iov = parts.data();
  packet.msg_iovlen = parts.size();
  if (!descriptors.empty()) {
    packet.msg_control = control.bytes.data();
    packet.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    cmsghdr* rights = CMSG_FIRSTHDR(&packet);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(descriptors.size_bytes());
    std::memcpy(CMSG_DATA(rights), descriptors.data(), descriptors.size_bytes());
  }
  ssize_t sent = 0;
  do {
    sent = sendmsg(socket_.Get(), &packet, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent >= 0;
}

std::optional<Message> Channel::Receive(int milliseconds) {
  pollfd waiting{socket_.Get(), POLLIN, 0};
  const int ready = poll(&waiting, 1, milliseconds);
  if (ready <= 0) return std::nullopt;

  MessageHead head{};
  Message message;
  message.text.resize(kMaxText);
  std::array<iovec, 2> parts{{{&head, sizeof(head)}, {message.text.data(), message.text.size()}}};
  ControlRoom control{};
  msghdr packet{};
  packet.msg_iov = parts.data();
  packet.msg_iovlen = parts.size();
  packet.msg_control = control.bytes.data();
  packet.msg_controllen = control.bytes.size();
  const ssize_t received = recvmsg(socket_.Get(), &packet, MSG_CMSG_CLOEXEC);
  if (received < static_cast<ssize_t>(sizeof(head))) {
    closed_ = received >= 0 || errno != EINTR;
    return std::nullopt;
  }
  message.descriptors = TakeDescriptors(packet);
  message.kind = head.kind;
  message.id = head.id;
  message.value = head.value;
  message.text.resize(static_cast<std::size_t>(received) - sizeof(head));
  return message;
}

void Channel::Shutdown() {
  if (socket_) shutdown(socket_.Get(), SHUT_RDWR);
}

void GiveUp(Channel& channel, const std::string& problem) {
  channel.Send(MessageKind::kProblem, 0, 0, problem);
  _exit(1);
}

}  // namespace device
