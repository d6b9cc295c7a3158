#include "device/arm64/stream_carrier.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace device {
namespace {

constexpr std::size_t kBlock = 32768;
/// A source is left alone while so much waits for the line, so that what is read does not pile up here.
constexpr std::size_t kMaxUnsent = 1048576;

}  // namespace

void StreamCarrier::AddSource(std::uint32_t command, int stream, UniqueFd descriptor) {
  Add(command, stream, true, std::move(descriptor));
}

void StreamCarrier::AddSink(std::uint32_t command, int stream, UniqueFd descriptor) {
  Add(command, stream, false, std::move(descriptor));
}

void StreamCarrier::Add(std::uint32_t command, int number, bool is_source, UniqueFd descriptor) {
  (void)fcntl(descriptor.Get(), F_SETFL, fcntl(descriptor.Get(), F_GETFL) | O_NONBLOCK);
  streams_.push_back({command, number, is_source, std::move(descriptor), "", false});
}

void StreamCarrier::Watch(std::vector<pollfd>& waiting) const {
  for (const Stream& stream : streams_) {
    if (stream.is_source && frames_.Unsent() < kMaxUnsent) waiting.push_back({stream.descriptor.Get(), POLLIN, 0});
    if (!stream.unwritten.empty()) waiting.push_back({stream.descriptor.Get(), POLLOUT, 0});
  }
}

void StreamCarrier::Carry() {
  for (Stream& stream : streams_) {
    if (!stream.is_source) Write(stream);
    while (stream.is_source && frames_.Unsent() < kMaxUnsent && Forward(stream)) {
    }
  }
  std::erase_if(streams_, [](const Stream& stream) { return !stream.descriptor; });
}

void StreamCarrier::Accept(const Frame& frame) {
  for (Stream& stream : streams_) {
    if (stream.is_source || stream.command != frame.id || stream.number != frame.value) continue;
    stream.unwritten += frame.bytes;
    stream.ended = stream.ended || frame.bytes.empty();
    Write(stream);
  }
}

void StreamCarrier::FinishSources(std::uint32_t command) {
  for (Stream& stream : streams_) {
    if (!stream.is_source || stream.command != command) continue;
    while (Forward(stream)) {
    }
    stream.descriptor.Reset();  // a process that the command left behind may hold the other end
  }
}

bool StreamCarrier::HasUnwritten(std::uint32_t command) const {
  return std::any_of(
      streams_.begin(), streams_.end(),
      [command](const Stream& stream) {
        return stream.command == command && stream.descriptor && !stream.unwritten.empty();
      });
}

void StreamCarrier::Drop(std::uint32_t command) {
  std::erase_if(
      streams_, [command](const Stream& stream) { return stream.command == command; });
}

/// Sends one block of a source, or its end.
/// @return false when there is nothing to send now.
bool StreamCarrier::Forward(Stream& source) {
  if (!source.descriptor) return false;
  std::array<char, kBlock> block{};
  const ssize_t length = read(source.descriptor.Get(), block.data(), block.size());
  if (length < 0 && (errno == EAGAIN || errno == EINTR)) return false;
  const std::size_t sent = length > 0 ? static_cast<std::size_t>(length) : 0;
  frames_.Send(FrameKind::kStream, source.command, source.number, {block.data(), sent});
  if (length <= 0) source.descriptor.Reset();
  return length > 0;
}

void StreamCarrier::Write(Stream& sink) {
  std::size_t done = 0;
  while (sink.descriptor && done < sink.unwritten.size()) {
    const ssize_t written = write(sink.descriptor.Get(), sink.unwritten.data() + done, sink.unwritten.size() - done);
    if (written < 0 && (errno == EAGAIN || errno == EINTR)) break;
    if (written < 0) sink.descriptor.Reset();  // nobody reads it any more
    if (written > 0) done += static_cast<std::size_t>(written);
  }
  sink.unwritten.erase(0, done);
  if (sink.ended && sink.unwritten.empty()) sink.descriptor.Reset();
}

}  // namespace device
