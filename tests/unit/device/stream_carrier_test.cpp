#include "device/arm64/stream_carrier.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <utility>

#include "device/arm64/frame_stream.h"

namespace {

using device::Frame;
using device::FrameKind;
using device::FrameStream;
using device::StreamCarrier;

constexpr std::uint32_t kCommand = 7;
constexpr int kMaxRounds = 100000;

std::pair<UniqueFd, UniqueFd> SocketPair() {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

std::pair<UniqueFd, UniqueFd> Pipe() {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

/// Two ends of one line, each with a carrier.
struct Line {
  explicit Line(std::pair<UniqueFd, UniqueFd> sockets = SocketPair())
      : near_frames(std::move(sockets.first)), far_frames(std::move(sockets.second)) {
    (void)std::signal(SIGPIPE, SIG_IGN);
  }

  void Step() {
    near.Carry();
    near_frames.Flush();
    far_frames.Receive();
    while (std::optional<Frame> frame = far_frames.Next()) far.Accept(*frame);
    far.Carry();
  }

  FrameStream near_frames;
  FrameStream far_frames;
  StreamCarrier near{near_frames};
  StreamCarrier far{far_frames};
};

/// @return false at the end of the stream.
bool ReadSome(int descriptor, std::string& text) {
  std::array<char, 65536> block{};
  const ssize_t length = read(descriptor, block.data(), block.size());
  if (length > 0) text.append(block.data(), static_cast<std::size_t>(length));
  return length != 0;
}

TEST(StreamCarrier, CarriesMoreThanTheLineHoldsAndThenTheEnd) {
  std::string sent(3000000, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7919 >> 5);
  Line line;
  auto [source, writing] = Pipe();
  auto [reading, sink] = Pipe();
  line.near.AddSource(kCommand, 1, std::move(source));
  line.far.AddSink(kCommand, 1, std::move(sink));

  std::string received;
  std::size_t written = 0;
  bool open = true;
  for (int round = 0; open && round < kMaxRounds; ++round) {
    const ssize_t more = write(writing.Get(), sent.data() + written, sent.size() - written);
    if (more > 0) written += static_cast<std::size_t>(more);
    if (written == sent.size()) writing.Reset();
    line.Step();
    open = ReadSome(reading.Get(), received);
  }
  EXPECT_FALSE(open) << "the end did not arrive";
  EXPECT_EQ(received, sent);
}

TEST(StreamCarrier, SendsTheRestOfACommandWhoseChildHoldsTheStream) {
  Line line;
  auto [source, writing] = Pipe();
  auto [reading, sink] = Pipe();
  line.near.AddSource(kCommand, 1, std::move(source));
  line.far.AddSink(kCommand, 1, std::move(sink));
  ASSERT_EQ(write(writing.Get(), "last words", 10), 10);
  line.near.FinishSources(kCommand);
  line.Step();
  std::string received;
  ReadSome(reading.Get(), received);
  EXPECT_EQ(received, "last words");
}

TEST(StreamCarrier, ForgetsASinkThatNobodyReads) {
  Line line;
  auto [source, writing] = Pipe();
  auto [reading, sink] = Pipe();
  line.near.AddSource(kCommand, 1, std::move(source));
  line.far.AddSink(kCommand, 1, std::move(sink));
  reading.Reset();
  ASSERT_EQ(write(writing.Get(), "unheard", 7), 7);
  line.Step();
  EXPECT_FALSE(line.far.HasUnwritten(kCommand));
}

TEST(FrameStream, PutsAFrameTogetherFromSingleBytes) {
  auto [one, other] = SocketPair();
  auto [raw, end] = SocketPair();
  FrameStream sender(std::move(one));
  FrameStream receiver(std::move(end));
  sender.Send(FrameKind::kCommandEnded, 3, -1, "a");
  sender.Send(FrameKind::kHello);
  std::string bytes;
  ReadSome(other.Get(), bytes);
  std::string kinds;
  for (const char byte : bytes) {
    ASSERT_EQ(write(raw.Get(), &byte, 1), 1);
    receiver.Receive();
    if (const std::optional<Frame> frame = receiver.Next()) {
      kinds +=
          frame->kind == FrameKind::kHello ? "hello" : "ended " + std::to_string(frame->value) + frame->bytes + " ";
    }
  }
  EXPECT_EQ(kinds, "ended -1a hello");
  raw.Reset();
  receiver.Receive();
  EXPECT_TRUE(receiver.Closed());
}

}  // namespace
