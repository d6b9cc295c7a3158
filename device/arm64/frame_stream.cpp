#include "device/arm64/frame_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <utility>

namespace device {
namespace {

static_assert(std::endian::native == std::endian::little, "numbers go over the line as they are in memory");

struct FrameHead {
  FrameKind kind;
  std::uint32_t id;
  std::int32_t value;
  std::uint32_t length;
};

bool IsOver(ssize_t moved) { return moved < 0 && errno != EAGAIN && errno != EINTR; }

}  // namespace

FrameStream::FrameStream(UniqueFd line) : line_(std::move(line)) {
  (void)fcntl(line_.Get(), F_SETFL, fcntl(line_.Get(), F_GETFL) | O_NONBLOCK);
}

void FrameStream::Send(FrameKind kind, std::uint32_t id, std::int32_t value, std::string_view bytes) {
  const FrameHead head{kind, id, value, static_cast<std::uint32_t>(bytes.size())};
  unsent_.append(reinterpret_cast<const char*>(&head), sizeof(head));
  unsent_.append(bytes);
  Flush();
}

void FrameStream::Flush() {
  std::size_t sent = 0;
  while (sent < unsent_.size() && !closed_) {
    const ssize_t written = write(line_.Get(), unsent_.data() + sent, unsent_.size() - sent);
    closed_ = IsOver(written);
    if (written <= 0) break;
    sent += static_cast<std::size_t>(written);
  }
  unsent_.erase(0, closed_ ? unsent_.size() : sent);
}

void FrameStream::Receive() {
  std::array<char, 65536> block{};
  const ssize_t length = read(line_.Get(), block.data(), block.size());
  if (length > 0) received_.append(block.data(), static_cast<std::size_t>(length));
  if (length == 0 || IsOver(length)) closed_ = true;
}

std::optional<Frame> FrameStream::Next() {
  FrameHead head{};
  if (received_.size() < sizeof(head)) return std::nullopt;
  std::memcpy(&head, received_.data(), sizeof(head));
  if (received_.size() - sizeof(head) < head.length) return std::nullopt;
  Frame frame{head.kind, head.id, head.value, received_.substr(sizeof(head), head.length)};
  received_.erase(0, sizeof(head) + head.length);
  return frame;
}

}  // namespace device
